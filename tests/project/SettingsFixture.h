#pragma once
// A tiny atlas home in a temporary folder and a map that only remembers what
// it was asked to do, for the settings, project and start-up tests.

#include "platform/AtlasHome.h"
#include "platform/Profile.h"
#include "project/MapHost.h"
#include "project/ReferenceDb.h"
#include "project/ThemeSettings.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QTemporaryDir>

namespace mervola::test {

struct FakeLayer {
    QString path;
    QString name;
    ThemeSettings settings;
    bool labels = false;
    QString labelField;
};

class FakeMap : public MapHost {
public:
    QList<FakeLayer> layers;  // index 0 = top
    ExtentRect ext;
    QString caption;
    int refreshes = 0;

    int layerCount() const override { return int(layers.size()); }
    QString layerName(int i) const override { return layers.at(i).name; }
    bool layerVisible(int i) const override { return layers.at(i).settings.visible; }
    void removeAllLayers() override { layers.clear(); }
    Status addLayer(const QString &path, const QString &name) override
    {
        if (!QFileInfo(path).isFile())
            return Status::fail(QStringLiteral("no shapefile ") + path);
        layers.prepend({path, name, {}, false, {}});
        return {};
    }
    void applySettings(const QString &name, const ThemeSettings &s) override
    {
        if (FakeLayer *l = find(name))
            l->settings = s;
    }
    ExtentRect extent() const override { return ext; }
    void setExtent(const ExtentRect &e) override { ext = e; }
    void refresh() override { ++refreshes; }
    void setCaption(const QString &c) override { caption = c; }
    void refreshLegend() override {}
    void setLabels(const QString &name, bool on, const QString &field) override
    {
        if (FakeLayer *l = find(name)) {
            l->labels = on;
            l->labelField = field;
        }
    }
    QStringList names() const
    {
        QStringList out;
        for (const FakeLayer &l : layers)
            out << l.name;
        return out;
    }
    FakeLayer *find(const QString &name)
    {
        for (FakeLayer &l : layers)
            if (l.name == name)
                return &l;
        return nullptr;
    }
};

// dati/ with an empty reference database, italia/, originali/, supporto/.
// A whole dBase table of one text field LABEL and one record.
inline QByteArray tinyDbf(const QByteArray &label)
{
    QByteArray header(32, '\0');
    header[0] = 0x03;
    header[4] = 1;                // records
    header[8] = 65;               // header length: 32 + one field + 0x0D
    header[10] = 21;              // record length: deletion flag + 20
    QByteArray field(32, '\0');
    field.replace(0, 5, "LABEL");
    field[11] = 'C';
    field[16] = 20;
    return header + field + '\x0D' + ' ' + label.leftJustified(20, ' ', true) + '\x1A';
}

struct TinyHome {
    QTemporaryDir dir;
    AtlasHome home;

    TinyHome() : home(dir.path())
    {
        for (const char *sub : {"dati", "italia", "originali", "supporto"})
            QDir(dir.path()).mkpath(QString::fromLatin1(sub));
        (void)ReferenceDb::createSchema(home.referenceDb());
    }
    QString root() const { return home.root(); }
    ReferenceDb db() const { return ReferenceDb(home); }
    void sql(const QString &statement) const { (void)db().execute(statement); }

    // A shapefile (content does not matter to the fake map) and its table.
    void addShape(const QString &name, const QByteArray &table = "table")
    {
        writeFile(home.italia() + QLatin1Char('/') + name + QStringLiteral(".shp"), "shp");
        writeFile(home.italia() + QLatin1Char('/') + name + QStringLiteral(".dbf"), table);
    }
    void write(const QString &relative, const QStringList &lines) const
    {
        QByteArray bytes;
        for (const QString &l : lines)
            bytes += l.toUtf8() + '\n';
        writeFile(home.root() + QLatin1Char('/') + relative, bytes);
    }
    QString text(const QString &relative) const { return QString::fromUtf8(readFile(home.root() + QLatin1Char('/') + relative)); }
    QStringList lines(const QString &relative) const { return splitLines(text(relative)); }

    // A default project with two themes whose settings live in originali/.
    void makeDefaultAtlas()
    {
        addShape(QStringLiteral("commont"), tinyDbf("pristine commont"));
        addShape(QStringLiteral("comuni"), tinyDbf("pristine comuni"));
        writeFile(home.originali() + QStringLiteral("/commont.dbf"), tinyDbf("pristine commont"));
        for (const QString &t : {QStringLiteral("commont"), QStringLiteral("comuni")})
            write(QStringLiteral("originali/") + t + QStringLiteral(".ini"),
                  {QLatin1Char('[') + t + QLatin1Char(']'), QStringLiteral("JOIN=-1^-1^-1^-1^-1^-1^"),
                   QStringLiteral("STRUCTJOIN=*^"), QStringLiteral("WORKSPACE=/nowhere/"),
                   QStringLiteral("BASE=") + t + QStringLiteral(".shp^") + t + QLatin1Char('^'),
                   QStringLiteral("SIMBOLO=2^0^0^56320^33554432^"), QStringLiteral("LABEL=*"),
                   QStringLiteral("TIPOCLASSIFICAZIONE=0"), QStringLiteral("CAMPO=I010^0^0^0^"),
                   QStringLiteral("CLASSIFICAZIONE=0"), QStringLiteral("OUTLINE=1"), QStringLiteral("VISIBILE=1")});
        write(QStringLiteral("supporto/default.rlx"),
              {QStringLiteral("[RLX]"), QStringLiteral("DBFCOMMONT=commont^"),
               QStringLiteral("EXTENT=100^200^300^400^"), QStringLiteral("[comuni]"), QStringLiteral("[commont]")});
    }
};

}  // namespace mervola::test
