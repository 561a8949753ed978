// The generated demo atlas: every theme table readable with the expected
// schema, the reference catalogue complete, settings files and default
// project well-formed, and rebuilds identical.
#include "atlas/AtlasBuilder.h"
#include "platform/Profile.h"
#include "project/ReferenceDb.h"

#include <QtTest>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <set>

using namespace mervola;

namespace {

struct TableInfo {
    int count = -1;
    QStringList fields;
    QStringList labels;
    QStringList progMont;
    int epsg = 0;
};

TableInfo readTable(const QString &path)
{
    TableInfo info;
    GDALAllRegister();
    std::unique_ptr<GDALDataset> ds(
        GDALDataset::Open(path.toUtf8().constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
    if (!ds || ds->GetLayerCount() != 1)
        return info;
    OGRLayer *layer = ds->GetLayer(0);
    OGRFeatureDefn *def = layer->GetLayerDefn();
    for (int i = 0; i < def->GetFieldCount(); ++i)
        info.fields << QString::fromUtf8(def->GetFieldDefn(i)->GetNameRef());
    if (const OGRSpatialReference *srs = layer->GetSpatialRef()) {
        OGRSpatialReference copy(*srs);
        copy.AutoIdentifyEPSG();
        if (const char *code = copy.GetAuthorityCode(nullptr))
            info.epsg = atoi(code);
    }
    info.count = static_cast<int>(layer->GetFeatureCount());
    const int label = def->GetFieldIndex("Label");
    const int prog = def->GetFieldIndex("PROG_MONT");
    for (auto &f : *layer) {
        if (label >= 0)
            info.labels << QString::fromUtf8(f->GetFieldAsString(label));
        if (prog >= 0)
            info.progMont << QString::fromUtf8(f->GetFieldAsString(prog));
    }
    return info;
}

QByteArray bytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

class TestDemoAtlas : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_home = m_dir.filePath(QStringLiteral("atlante"));
        const Status s = atlas::buildDemoAtlas(m_home);
        QVERIFY2(s.ok(), qPrintable(s.errorMessage()));
        QVERIFY(!QDir(m_home + QStringLiteral(".new-build")).exists());
    }

    void everyThemeTableReadable_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("communities");
        QTest::newRow("regioni") << "regioni" << 3 << false;
        QTest::newRow("province") << "province" << 4 << false;
        QTest::newRow("citta") << "citta" << 4 << false;
        QTest::newRow("comuni") << "comuni" << 94 << false;
        QTest::newRow("comu_01") << "comu_01" << 66 << false;
        QTest::newRow("comu_19") << "comu_19" << 16 << false;
        QTest::newRow("commont") << "commont" << 4 << true;
        QTest::newRow("cmont_01") << "cmont_01" << 3 << true;
        QTest::newRow("cmont_02") << "cmont_02" << 1 << true;
    }
    void everyThemeTableReadable()
    {
        QFETCH(QString, table);
        QFETCH(int, count);
        QFETCH(bool, communities);
        const QString shp = m_home + QStringLiteral("/italia/") + table + QStringLiteral(".shp");
        const TableInfo info = readTable(shp);
        QCOMPARE(info.count, count);
        QCOMPARE(info.epsg, 32632);
        QVERIFY(info.fields.contains(QStringLiteral("Label")));
        QCOMPARE(info.labels.size(), count);
        QVERIFY(!info.labels.contains(QString()));
        for (const QString &f : info.fields)
            QVERIFY2(f.toUtf8().size() <= 10, qPrintable(f));
        QCOMPARE(bytes(m_home + QStringLiteral("/italia/") + table + QStringLiteral(".cpg")), QByteArray("UTF-8"));
        // The pristine copy equals the working table.
        QCOMPARE(bytes(m_home + QStringLiteral("/originali/") + table + QStringLiteral(".dbf")),
                 bytes(m_home + QStringLiteral("/italia/") + table + QStringLiteral(".dbf")));
        if (communities) {
            QCOMPARE(info.fields.first(), QStringLiteral("PROG_MONT"));
            QVERIFY(info.fields.contains(QStringLiteral("I010")));
            QVERIFY(!info.fields.contains(QStringLiteral("I000")));
            QCOMPARE(std::set<QString>(info.progMont.begin(), info.progMont.end()).size(), size_t(count));
        }
    }

    void municipalitiesPointToTheirCommunity()
    {
        const TableInfo comuni = readTable(m_home + QStringLiteral("/italia/comuni.shp"));
        const TableInfo commont = readTable(m_home + QStringLiteral("/italia/commont.shp"));
        QVERIFY(comuni.fields.contains(QStringLiteral("PROG_MONT")));
        QVERIFY(comuni.fields.contains(QStringLiteral("_02010")));
        int members = 0;
        for (const QString &p : comuni.progMont) {
            if (p.isEmpty())
                continue;
            ++members;
            QVERIFY2(commont.progMont.contains(p), qPrintable(p));
        }
        // Torino, Cuneo and Aosta mountain cells less the provincial capital
        // among each; none in Sicily.
        QCOMPARE(members, 30 + 12 + 12 - 3);
        QCOMPARE(readTable(m_home + QStringLiteral("/italia/combase.dbf")).progMont, commont.progMont);
        QCOMPARE(bytes(m_home + QStringLiteral("/originali/combase.dbf")), bytes(m_home + QStringLiteral("/italia/combase.dbf")));
    }

    void regionWithoutCommunitiesHasNoCommunityTheme()
    {
        QVERIFY(!QFile::exists(m_home + QStringLiteral("/italia/cmont_19.shp")));
        QVERIFY(!QFile::exists(m_home + QStringLiteral("/originali/cmont_19.ini")));
        QVERIFY(QFile::exists(m_home + QStringLiteral("/originali/comu_19.ini")));
    }

    void structuresCoverEveryField()
    {
        ReferenceDb db(m_home + QStringLiteral("/dati/mervola.sqlite"));
        const QStringList dbfs = QDir(m_home + QStringLiteral("/italia")).entryList({QStringLiteral("*.shp")});
        QVERIFY(dbfs.size() >= 9);
        for (const QString &shp : dbfs) {
            const QString table = QFileInfo(shp).completeBaseName();
            const TableInfo info = readTable(m_home + QStringLiteral("/italia/") + shp);
            auto rows = db.query(QStringLiteral("Select Label,Alias,Tematizza,Fieldjoin from STRUTTURE where Tabella = '%1'").arg(table));
            QVERIFY(rows.ok());
            QStringList labels;
            for (size_t i = 0; i < rows->size(); ++i) {
                const QString label = rows->value(i, QStringLiteral("Label")).toString();
                labels << label;
                QVERIFY(!rows->value(i, QStringLiteral("Alias")).toString().isEmpty());
                const bool indicator = label.startsWith(QLatin1Char('_')) || QRegularExpression(QStringLiteral("^I\\d{3}$")).match(label).hasMatch();
                if (indicator)
                    QCOMPARE(rows->value(i, QStringLiteral("Tematizza")).toInt(), -1);
                if (label == QLatin1String("PROG_MONT") || label == QLatin1String("COD_ISTAT"))
                    QCOMPARE(rows->value(i, QStringLiteral("Fieldjoin")).toInt(), -1);
            }
            QCOMPARE(labels, info.fields);
            auto alias = db.query(QStringLiteral("SELECT ALIAS FROM ALIASTEMI WHERE NOMETEMAORIGINALE = '%1'").arg(table));
            QVERIFY(alias.ok());
            QCOMPARE(alias->size(), size_t(1));
        }
    }

    void indicatorsAndCategoryTables()
    {
        ReferenceDb db(m_home + QStringLiteral("/dati/mervola.sqlite"));
        auto ind = db.query(QStringLiteral("Select ind from INDICATORI where cod_ind ='02010'"));
        QVERIFY(ind.ok() && ind->size() == 1);
        QVERIFY(ind->value(0, QStringLiteral("ind")).toString().contains(QStringLiteral("2022")));
        auto back = db.query(QStringLiteral("Select cod_ind from INDICATORI where ind ='%1' and Cat = 'Popolazione'")
                                 .arg(ind->value(0, QStringLiteral("ind")).toString()));
        QVERIFY(back.ok() && back->size() == 1);
        auto cats = db.query(QStringLiteral("SELECT * FROM qryTutteCategorie"));
        QVERIFY(cats.ok());
        const TableInfo commont = readTable(m_home + QStringLiteral("/italia/commont.shp"));
        for (size_t i = 0; i < cats->size(); ++i) {
            const QString code = cats->rows[i][0].toString();
            auto rows = db.query(QStringLiteral("SELECT * FROM [%1] ORDER BY PROG_MONT").arg(code));
            QVERIFY2(rows.ok(), qPrintable(rows.errorMessage()));
            QCOMPARE(static_cast<int>(rows->size()), commont.count);
            QCOMPARE(rows->columns.first(), QStringLiteral("PROG_MONT"));
        }
        auto pop = db.query(QStringLiteral("SELECT I010 FROM [02] WHERE PROG_MONT = '00701'"));
        QVERIFY(pop.ok() && pop->size() == 1 && pop->rows[0][0].toDouble() > 0);
    }

    void defaultProjectAndSettings()
    {
        auto text = readTextFile(m_home + QStringLiteral("/supporto/default.rlx"));
        QVERIFY(text.ok());
        const QStringList lines = splitLines(*text);
        QCOMPARE(lines.value(0), QStringLiteral("[RLX]"));
        QCOMPARE(lines.value(1), QStringLiteral("DBFCOMMONT=^"));
        QVERIFY(lines.value(2).startsWith(QStringLiteral("EXTENT=")));
        const QStringList extent = splitFields(lines.value(2).mid(7));
        QCOMPARE(extent.size(), 4);
        QVERIFY(extent[0].toDouble() < extent[2].toDouble() && extent[1].toDouble() < extent[3].toDouble());
        QStringList sections;
        for (const QString &l : lines)
            if (l.startsWith(QLatin1Char('[')) && l != QLatin1String("[RLX]"))
                sections << l;
        QCOMPARE(sections, (QStringList{"[regioni]", "[comuni]", "[commont]", "[province]", "[citta]"}));
        const QStringList keys = {"JOIN", "STRUCTJOIN", "WORKSPACE", "BASE", "SIMBOLO", "LABEL",
                                  "TIPOCLASSIFICAZIONE", "CAMPO", "CLASSIFICAZIONE", "OUTLINE", "VISIBILE"};
        for (const QString name : {"commont", "comu_02", "cmont_01", "regioni"}) {
            auto ini = readTextFile(m_home + QStringLiteral("/originali/") + name + QStringLiteral(".ini"));
            QVERIFY(ini.ok());
            const QStringList il = splitLines(*ini);
            QCOMPARE(il.size(), 12);
            for (int k = 0; k < keys.size(); ++k)
                QVERIFY2(il[k + 1].startsWith(keys[k] + QLatin1Char('=')), qPrintable(il[k + 1]));
            QCOMPARE(bytes(m_home + QStringLiteral("/supporto/") + name + QStringLiteral(".ini")),
                     bytes(m_home + QStringLiteral("/originali/") + name + QStringLiteral(".ini")));
        }
        const ProfileFile cm = ProfileFile::load(m_home + QStringLiteral("/originali/cmont_01.ini"));
        QCOMPARE(cm.read(QStringLiteral("CMONT_01"), QStringLiteral("campo")), QStringLiteral("I010^0^0^0^"));
        QCOMPARE(cm.read(QStringLiteral("CMONT_01"), QStringLiteral("workspace")), m_home + QStringLiteral("/italia/"));
        QVERIFY(QFile::exists(m_home + QStringLiteral("/supporto/stili.ini")));
        QVERIFY(bytes(m_home + QStringLiteral("/mervola.html")).contains("CC BY"));
    }

    void rebuildGivesIdenticalTables()
    {
        const QString other = m_dir.filePath(QStringLiteral("secondo"));
        QVERIFY(atlas::buildDemoAtlas(other).ok());
        QVERIFY(atlas::buildDemoAtlas(other).ok());  // replacing an atlas is allowed
        for (const QString &f : QDir(m_home + QStringLiteral("/italia")).entryList(QDir::Files))
            QVERIFY2(bytes(m_home + QStringLiteral("/italia/") + f) == bytes(other + QStringLiteral("/italia/") + f),
                     qPrintable(f));
        QCOMPARE(bytes(m_home + QStringLiteral("/dati/mervola.sqlite")), bytes(other + QStringLiteral("/dati/mervola.sqlite")));
    }

    void refusesAFolderThatIsNotAnAtlas()
    {
        const QString folder = m_dir.filePath(QStringLiteral("documenti"));
        QVERIFY(QDir().mkpath(folder));
        QFile note(folder + QStringLiteral("/nota.txt"));
        QVERIFY(note.open(QIODevice::WriteOnly));
        note.write("dati dell'utente");
        note.close();
        const Status s = atlas::buildDemoAtlas(folder);
        QVERIFY(!s.ok());
        QCOMPARE(bytes(folder + QStringLiteral("/nota.txt")), QByteArray("dati dell'utente"));
        QVERIFY(!QDir(folder + QStringLiteral("/italia")).exists());
    }
};

QTEST_GUILESS_MAIN(TestDemoAtlas)
#include "test_demoatlas.moc"
