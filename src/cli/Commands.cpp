#include "cli/Commands.h"

#include <QTextStream>
#include <cstdio>

namespace mervola::cli {

const std::vector<Command> &commands()
{
    static const std::vector<Command> list = {
        {"build-atlas", "build-atlas --sources DIR --home DIR | build-atlas --demo --home DIR", cmdBuildAtlas},
        {"sql", "sql (--folder DIR | --home DIR) \"ISTRUZIONE\"", cmdSql},
        {"render", "render --home DIR [--project FILE] [--size LxA] --out FILE.{png,bmp,emf,svg,pdf}", cmdRender},
        {"classify", "classify --home DIR --theme NOME --field CAMPO --method quantile|regolari|unico|naturali [--classes N] [--ramp N]", cmdClassify},
    };
    return list;
}

QString option(const QStringList &args, const QString &name)
{
    const int i = args.indexOf(name);
    return i >= 0 && i + 1 < args.size() ? args[i + 1] : QString();
}

bool flag(const QStringList &args, const QString &name) { return args.contains(name); }

int fail(const QString &message)
{
    std::fprintf(stderr, "mervola-cli: %s\n", message.toUtf8().constData());
    return 2;
}

static void usage()
{
    QTextStream err(stderr);
    err << "Uso: mervola-cli COMANDO [opzioni]\n";
    for (const Command &c : commands())
        err << "  mervola-cli " << c.usage << "\n";
}

int run(const QStringList &arguments)
{
    if (arguments.size() < 2) {
        usage();
        return 2;
    }
    const QString name = arguments[1];
    for (const Command &c : commands())
        if (name == QLatin1String(c.name))
            return c.fn(arguments.mid(2));
    usage();
    return fail(QStringLiteral("comando sconosciuto: %1").arg(name));
}

}  // namespace mervola::cli
