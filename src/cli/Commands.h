#pragma once
// Sub-command table of mervola-cli. Each sub-command lives in its own file
// and registers here; errors go to stderr in Italian with a non-zero exit.

#include <QStringList>
#include <functional>

namespace mervola::cli {

using CommandFn = std::function<int(const QStringList &args)>;

struct Command {
    const char *name;
    const char *usage;  // one line, Italian
    CommandFn fn;
};

// All sub-commands, in the order `mervola-cli` lists them.
const std::vector<Command> &commands();
int run(const QStringList &arguments);

// Reads "--name value" from args; empty when absent.
QString option(const QStringList &args, const QString &name);
bool flag(const QStringList &args, const QString &name);
// Prints an Italian error on stderr and returns 2.
int fail(const QString &message);

// Replaces the core application by a GUI application (defined by the
// executable's main); drawing text needs one, and it costs start-up time.
void ensureGuiApplication();

// Implemented in the sub-command files.
int cmdSql(const QStringList &args);
int cmdBuildAtlas(const QStringList &args);
int cmdRender(const QStringList &args);
int cmdClassify(const QStringList &args);

}  // namespace mervola::cli
