#include "cli/Commands.h"

namespace mervola::cli {

int cmdSql(const QStringList &) { return fail(QStringLiteral("non ancora disponibile")); }

}  // namespace mervola::cli
