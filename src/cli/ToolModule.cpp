#include "cli/ToolModule.h"

#include "cli/Commands.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>

namespace mervola::cli
{

namespace
{

constexpr char kModuleName[] = "mervola-cli-tools.so";

// The loaded module, or the reason it could not be loaded.
struct Module {
    Module()
    {
        const QString dir = QCoreApplication::applicationDirPath();
        const QString name = QString::fromLatin1(kModuleName);
        QString path = dir + QLatin1Char('/') + name;
        if (!QFileInfo::exists(path))
            path = dir + QStringLiteral("/../lib/mervola/") + name;
        library.setFileName(path);
        if (!library.load())
            error = QStringLiteral("impossibile caricare il modulo %1: %2").arg(name, library.errorString());
    }
    QLibrary library;
    QString error;
};

Module &module()
{
    static Module m;
    return m;
}

template <class Fn> Fn entry(const char *symbol, QString *error)
{
    Module &m = module();
    if (!m.error.isEmpty()) {
        *error = m.error;
        return nullptr;
    }
    auto fn = reinterpret_cast<Fn>(m.library.resolve(symbol));
    if (!fn)
        *error = QStringLiteral("il modulo %1 non contiene %2").arg(m.library.fileName(), QLatin1String(symbol));
    return fn;
}

} // namespace

int runTool(const char *name, const QStringList &args)
{
    QString error;
    const auto fn = entry<ToolEntry>(kToolEntry, &error);
    return fn ? fn(name, &args) : fail(error);
}

Result<map::LayerDataPtr> readLayerThroughTools(const QString &path)
{
    QString error;
    const auto fn = entry<LayerEntry>(kLayerEntry, &error);
    if (!fn)
        return Error{QStringLiteral("Impossibile aprire il tema %1: %2").arg(QFileInfo(path).fileName(), error)};
    Result<map::LayerDataPtr> out = Error{};
    fn(&path, &out);
    return out;
}

// The sub-commands of the module, as the command table calls them.
int cmdBuildAtlas(const QStringList &args)
{
    return runTool("build-atlas", args);
}
int cmdSql(const QStringList &args)
{
    return runTool("sql", args);
}
int cmdClassify(const QStringList &args)
{
    return runTool("classify", args);
}
int cmdJoin(const QStringList &args)
{
    return runTool("join", args);
}
int cmdUnjoin(const QStringList &args)
{
    return runTool("unjoin", args);
}

} // namespace mervola::cli
