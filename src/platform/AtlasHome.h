#pragma once
// The atlas home: the folder with dati/, italia/, originali/, supporto/.

#include <QString>

namespace mervola {

class AtlasHome {
public:
    AtlasHome() = default;
    explicit AtlasHome(QString root);

    // --home value, else $MERVOLA_HOME, else $XDG_DATA_HOME/mervola (~/.local/share/mervola).
    static AtlasHome locate(const QString &homeArgument = {});

    QString root() const { return m_root; }
    QString dati() const { return sub(QStringLiteral("dati")); }
    QString italia() const { return sub(QStringLiteral("italia")); }
    QString originali() const { return sub(QStringLiteral("originali")); }
    QString supporto() const { return sub(QStringLiteral("supporto")); }
    QString referenceDb() const { return dati() + QStringLiteral("/mervola.sqlite"); }
    QString defaultProject() const { return supporto() + QStringLiteral("/default.rlx"); }
    QString helpFile() const { return m_root + QStringLiteral("/mervola.html"); }
    bool exists() const;

private:
    QString sub(const QString &name) const { return m_root + QLatin1Char('/') + name; }
    QString m_root;
};

// The folder of the source data an atlas home is built from, where it holds
// comuni_attributi.csv: $MERVOLA_SOURCES, else the copy installed with the
// program (<prefix>/share/mervola/sources beside <prefix>/bin), else the
// data/sources folder of the source tree that holds the build folder. Empty
// when none does; `searched` then lists where it looked.
QString atlasSourcesFolder(QStringList *searched = nullptr);

// The path of `name` inside `dir`, matched case-insensitively against the
// files present: names read from settings, project and region files are
// matched without regard to case, so "\Supporto\" and "supporto" are the
// same folder. When nothing matches, dir + "/" + name.
QString resolveCaseInsensitive(const QString &dir, const QString &name);

}  // namespace mervola
