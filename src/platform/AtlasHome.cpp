#include "platform/AtlasHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace mervola {

AtlasHome::AtlasHome(QString root) : m_root(QDir::cleanPath(QFileInfo(root).absoluteFilePath())) {}

AtlasHome AtlasHome::locate(const QString &homeArgument)
{
    if (!homeArgument.isEmpty())
        return AtlasHome(homeArgument);
    const QString env = qEnvironmentVariable("MERVOLA_HOME");
    if (!env.isEmpty())
        return AtlasHome(env);
    QString xdg = qEnvironmentVariable("XDG_DATA_HOME");
    if (xdg.isEmpty())
        xdg = QDir::homePath() + QStringLiteral("/.local/share");
    return AtlasHome(xdg + QStringLiteral("/mervola"));
}

bool AtlasHome::exists() const { return QFileInfo(referenceDb()).isFile() && QFileInfo(italia()).isDir(); }

QString atlasSourcesFolder(QStringList *searched)
{
    QStringList candidates;
    if (const QString env = qEnvironmentVariable("MERVOLA_SOURCES"); !env.isEmpty()) {
        candidates << env;
    } else {
        const QString bin = QCoreApplication::applicationDirPath();
        candidates << bin + QStringLiteral("/../share/mervola/sources") << bin + QStringLiteral("/../data/sources");
    }
    for (QString &c : candidates) {
        c = QDir::cleanPath(c);
        if (QFileInfo(c + QStringLiteral("/comuni_attributi.csv")).isFile())
            return c;
    }
    if (searched)
        *searched = candidates;
    return {};
}

QString resolveCaseInsensitive(const QString &dir, const QString &name)
{
    const QString direct = dir + QLatin1Char('/') + name;
    if (QFileInfo::exists(direct))
        return direct;
    const QStringList entries = QDir(dir).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &e : entries)
        if (e.compare(name, Qt::CaseInsensitive) == 0)
            return dir + QLatin1Char('/') + e;
    return direct;
}

}  // namespace mervola
