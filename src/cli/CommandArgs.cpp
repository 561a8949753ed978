// Option parsing and error output shared by every sub-command, in the
// executable and in the tools module alike.
#include "cli/Commands.h"

#include <cstdio>

namespace mervola::cli
{

QString option(const QStringList &args, const QString &name)
{
    const int i = args.indexOf(name);
    return i >= 0 && i + 1 < args.size() ? args[i + 1] : QString();
}

bool flag(const QStringList &args, const QString &name)
{
    return args.contains(name);
}

int fail(const QString &message)
{
    std::fprintf(stderr, "mervola-cli: %s\n", message.toUtf8().constData());
    return kExitFailed;
}

int usageError(const QString &message)
{
    std::fprintf(stderr, "mervola-cli: %s\n", message.toUtf8().constData());
    return kExitUsage;
}

} // namespace mervola::cli
