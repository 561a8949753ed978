#include "cli/Commands.h"

namespace mervola::cli {

int cmdBuildAtlas(const QStringList &) { return fail(QStringLiteral("non ancora disponibile")); }

}  // namespace mervola::cli
