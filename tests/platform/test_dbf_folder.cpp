// SQL over a folder of dBase tables: name lookup without regard to case,
// Jet statements of the attribute windows, SELECT ... INTO, writing
// statements that go back to the files, and the reload of changed files.
#include "platform/dbf/DbfFolder.h"
#include "support/TestSupport.h"

#include <QDate>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <ogrsf_frmts.h>

using namespace mervola;

namespace
{

DbfTable comuni()
{
    DbfTable t;
    t.fields = {{QStringLiteral("PROG_MONT"), DbfType::Text, 6, 0},
                {QStringLiteral("LABEL"), DbfType::Text, 40, 0},
                {QStringLiteral("POP"), DbfType::Numeric, 9, 0},
                {QStringLiteral("AREA"), DbfType::Numeric, 18, 5},
                {QStringLiteral("ISTITUITO"), DbfType::Date, 8, 0}};
    t.rows = {{QStringLiteral("01"), QStringLiteral("Aosta"), qlonglong(10), 21.5, QDate(1946, 6, 2)},
              {QStringLiteral("01"), QStringLiteral("Courmayeur"), qlonglong(20), 210.25, QVariant()},
              {QStringLiteral("02"), QStringLiteral("Città"), qlonglong(30), QVariant(), QVariant()},
              {QStringLiteral("03"), QVariant(), QVariant(), 4.0, QVariant()}};
    return t;
}

DbfTable monti()
{
    DbfTable t;
    t.fields = {{QStringLiteral("CODICE"), DbfType::Text, 6, 0},
                {QStringLiteral("LABEL"), DbfType::Text, 30, 0},
                {QStringLiteral("QUOTA"), DbfType::Numeric, 7, 1},
                {QStringLiteral("ATTIVA"), DbfType::Logical, 1, 0}};
    t.rows = {{QStringLiteral("01"), QStringLiteral("Valdigne"), 1200.5, true},
              {QStringLiteral("02"), QStringLiteral("Monte Rosa"), QVariant(), false}};
    return t;
}

// A point shapefile of `count` features (its .dbf is replaced by the caller).
bool writePointShapefile(const QString &path, int count)
{
    GDALAllRegister();
    GDALDriver *driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    GDALDatasetUniquePtr ds(driver->Create(path.toUtf8().constData(), 0, 0, 0, GDT_Unknown, nullptr));
    OGRLayer *layer = ds ? ds->CreateLayer("COMUNI", nullptr, wkbPoint, nullptr) : nullptr;
    if (!layer)
        return false;
    OGRFieldDefn id("ID", OFTInteger);
    layer->CreateField(&id);
    for (int i = 0; i < count; ++i) {
        OGRFeature feature(layer->GetLayerDefn());
        OGRPoint p(i, i);
        feature.SetGeometry(&p);
        if (layer->CreateFeature(&feature) != OGRERR_NONE)
            return false;
    }
    return true;
}

struct Fixture {
    QTemporaryDir dir;
    Fixture()
    {
        writeDbf(dir.filePath(QStringLiteral("COMUNI.DBF")), comuni()).ok();
        writeDbf(dir.filePath(QStringLiteral("monti.dbf")), monti()).ok();
    }
    QString path(const QString &name) const { return dir.filePath(name); }
};

} // namespace

class TestDbfFolder : public QObject
{
    Q_OBJECT
private slots:
    void namesCompareWithoutCase_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::newRow("lower table") << "select label from comuni where pop = 20";
        QTest::newRow("bracketed") << "select [Label] from [Comuni] where [POP] = 20";
        QTest::newRow("file name") << "SELECT LABEL FROM comuni.dbf WHERE Pop = 20";
        QTest::newRow("text compares without case") << "select label from COMUNI where label = 'COURMAYEUR'";
        // Città equals CITTÀ, so only Courmayeur sorts after it
        QTest::newRow("accented letters too") << "select label from COMUNI where label > 'CITTÀ' and pop >= 20";
    }
    void namesCompareWithoutCase()
    {
        QFETCH(QString, sql);
        Fixture f;
        DbfFolder folder(f.dir.path());
        QCOMPARE(folder.tableNames(), (QStringList{"COMUNI", "monti"}));
        auto rs = folder.query(sql);
        QVERIFY2(rs.ok(), qPrintable(rs.errorMessage()));
        QCOMPARE(rs->size(), size_t(1));
        QCOMPARE(rs->rows[0][0].toString(), QStringLiteral("Courmayeur"));
    }

    void jetDialect_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("rows");
        QTest::newRow("like star") << "select label from comuni where label like 'c*'" << 2;
        QTest::newRow("like question mark") << "select label from comuni where label Like '?osta'" << 1;
        QTest::newRow("star inside literal kept") << "select label from comuni where label = 'c*'" << 0;
        QTest::newRow("top") << "SELECT TOP 2 * FROM comuni ORDER BY POP" << 2;
        QTest::newRow("concatenation") << "select label & ' (' & prog_mont & ')' from comuni where pop = 10" << 1;
        QTest::newRow("logical is -1") << "select * from monti where ATTIVA = True" << 1;
        QTest::newRow("min of bracketed") << "Select Min([AREA]) from [comuni]" << 1;
        QTest::newRow("distinct values") << "Select distinct [PROG_MONT] from [comuni] ORDER BY [PROG_MONT] Asc;" << 3;
    }
    void jetDialect()
    {
        QFETCH(QString, sql);
        QFETCH(int, rows);
        Fixture f;
        DbfFolder folder(f.dir.path());
        auto rs = folder.query(sql);
        QVERIFY2(rs.ok(), qPrintable(rs.errorMessage()));
        QCOMPARE(int(rs->size()), rows);
    }

    void statisticsStatementUsesSampleVariance()
    {
        Fixture f;
        DbfFolder folder(f.dir.path());
        const QString filter = QStringLiteral(" WHERE PROG_MONT <> '03'");
        auto count = folder.query(QStringLiteral("SELECT Count (*) AS records From comuni.dbf") + filter);
        QVERIFY2(count.ok(), qPrintable(count.errorMessage()));
        QCOMPARE(count->value(0, QStringLiteral("records")).toInt(), 3);
        const QString F = QStringLiteral("POP");
        auto agg = folder.query(QStringLiteral("SELECT sum([") + F + "]) AS somma,min([" + F + "]) AS minimo,max([" +
                                F + "]) AS massimo,avg([" + F + "]) AS medio,var([" + F + "]) AS varianza,stdev([" + F +
                                "]) AS deviazione From comuni.dbf" + filter);
        QVERIFY2(agg.ok(), qPrintable(agg.errorMessage()));
        QCOMPARE(agg->value(0, QStringLiteral("somma")).toDouble(), 60.0);
        QCOMPARE(agg->value(0, QStringLiteral("minimo")).toDouble(), 10.0);
        QCOMPARE(agg->value(0, QStringLiteral("massimo")).toDouble(), 30.0);
        QCOMPARE(agg->value(0, QStringLiteral("medio")).toDouble(), 20.0);
        QCOMPARE(agg->value(0, QStringLiteral("varianza")).toDouble(), 100.0); // 200 / (3 - 1)
        QCOMPARE(agg->value(0, QStringLiteral("deviazione")).toDouble(), 10.0);
    }

    void selectIntoKeepsFieldsAndNulls()
    {
        Fixture f;
        DbfFolder folder(f.dir.path());
        auto n = folder.run(QStringLiteral("SELECT PROG_MONT,LABEL,POP,AREA,ISTITUITO, POP * 2 AS DOPPIO INTO export "
                                           "FROM comuni WHERE PROG_MONT <> '01' OR POP = 10"));
        QVERIFY2(n.ok(), qPrintable(n.errorMessage()));
        QCOMPARE(*n, 3);
        auto t = readDbf(f.path(QStringLiteral("export.dbf")));
        QVERIFY2(t.ok(), qPrintable(t.errorMessage()));
        QCOMPARE(t->fields.mid(0, 5), comuni().fields);
        QCOMPARE(t->fields[5].name, QStringLiteral("DOPPIO"));
        QCOMPARE(t->fields[5].type, DbfType::Numeric);
        QCOMPARE(t->fields[5].decimals, 0);
        QCOMPARE(t->encoding, QStringLiteral("UTF-8"));
        QCOMPARE(t->rows[1][1].toString(), QStringLiteral("Città"));
        QVERIFY(t->rows[1][3].isNull()); // numeric null
        QVERIFY(t->rows[2][1].isNull()); // text null
        QCOMPARE(t->rows[0][4].toDate(), QDate(1946, 6, 2));
        QCOMPARE(t->rows[0][5].toLongLong(), 20);

        auto again = folder.run(QStringLiteral("SELECT * INTO EXPORT FROM comuni"));
        QVERIFY(!again.ok()); // never overwrites an existing table
        QVERIFY(again.errorMessage().contains(QStringLiteral("esiste già")));
    }

    void joinIntoTempGivesDistinctNames()
    {
        Fixture f;
        DbfFolder folder(f.dir.path());
        auto n = folder.run(
            QStringLiteral("SELECT *,* INTO temp FROM comuni LEFT JOIN monti ON comuni.PROG_MONT=monti.CODICE;"));
        QVERIFY2(n.ok(), qPrintable(n.errorMessage()));
        QCOMPARE(*n, 4);
        auto t = folder.table(QStringLiteral("TEMP"));
        QVERIFY2(t.ok(), qPrintable(t.errorMessage()));
        QStringList names;
        for (const DbfField &fd : t->fields)
            names << fd.name;
        QCOMPARE(names, (QStringList{"PROG_MONT", "LABEL", "POP", "AREA", "ISTITUITO", "CODICE", "LABEL_1", "QUOTA",
                                     "ATTIVA"}));
        QCOMPARE(t->fields[7].decimals, 1);
        QCOMPARE(t->rows[0][6].toString(), QStringLiteral("Valdigne"));
        QCOMPARE(t->rows[0][7].toDouble(), 1200.5);
        QVERIFY(t->rows[3][6].isNull()); // no match in the left join

        const QString ogrinfo = QStandardPaths::findExecutable(QStringLiteral("ogrinfo"));
        if (!ogrinfo.isEmpty()) {
            QString out;
            QCOMPARE(
                test::runProgram(ogrinfo, {QStringLiteral("-al"), QStringLiteral("-so"), f.path("temp.dbf")}, &out), 0);
            QVERIFY2(out.contains(QStringLiteral("Feature Count: 4")), qPrintable(out));
            QVERIFY(out.contains(QStringLiteral("LABEL_1: String (30.0)")));
        }
        QVERIFY(folder.execute(QStringLiteral("DROP TABLE TEMP;")).ok());
        QVERIFY(!QFileInfo::exists(f.path("temp.dbf")));
        QVERIFY(!QFileInfo::exists(f.path("temp.cpg")));
    }

    void selectIntoAnotherFolder()
    {
        Fixture f;
        QVERIFY(QDir(f.dir.path()).mkdir(QStringLiteral("tema")));
        DbfFolder folder(f.dir.path());
        const QString sql = QStringLiteral("SELECT [CODICE] AS [CODICE], LABEL AS [NOME] INTO [dBase III;DATABASE=%1]."
                                           "[joinmdb] FROM [monti]")
                                .arg(f.path(QStringLiteral("tema")));
        auto n = folder.run(sql);
        QVERIFY2(n.ok(), qPrintable(n.errorMessage()));
        auto t = readDbf(f.path(QStringLiteral("tema/joinmdb.dbf")));
        QVERIFY(t.ok());
        QCOMPARE(t->fields[1], (DbfField{QStringLiteral("NOME"), DbfType::Text, 30, 0}));
    }

    void writingStatementsGoBackToTheFile_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<int>("changed");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("label0");
        QTest::newRow("update") << "UPDATE comuni SET LABEL = 'Aoste', POP = POP + 1 WHERE PROG_MONT = '01'" << 2 << 4
                                << "Aoste";
        QTest::newRow("insert") << "INSERT INTO Comuni (PROG_MONT, LABEL) VALUES ('09', 'Nuovo')" << 1 << 5 << "Aosta";
        QTest::newRow("delete star") << "DELETE * FROM comuni WHERE LABEL = 'aosta'" << 1 << 3 << "Courmayeur";
        QTest::newRow("nothing") << "DELETE FROM comuni WHERE 1 = 0" << 0 << 4 << "Aosta";
    }
    void writingStatementsGoBackToTheFile()
    {
        QFETCH(QString, sql);
        QFETCH(int, changed);
        QFETCH(int, rows);
        QFETCH(QString, label0);
        Fixture f;
        DbfFolder folder(f.dir.path());
        auto n = folder.run(sql);
        QVERIFY2(n.ok(), qPrintable(n.errorMessage()));
        QCOMPARE(*n, changed);
        auto t = readDbf(f.path(QStringLiteral("COMUNI.DBF")));
        QVERIFY(t.ok());
        QCOMPARE(t->fields, comuni().fields);
        QCOMPARE(int(t->rowCount()), rows);
        QCOMPARE(t->rows[0][1].toString(), label0);
        QVERIFY(t->rows[size_t(rows - 1)][2].isNull()); // untouched and inserted nulls stay null
        // the folder answers from its refreshed copy
        auto count = folder.query(QStringLiteral("select count(*) from comuni"));
        QCOMPARE(count->rows[0][0].toInt(), rows);
    }

    void changedFileIsReloaded()
    {
        Fixture f;
        DbfFolder folder(f.dir.path());
        QCOMPARE(folder.query(QStringLiteral("select count(*) from comuni"))->rows[0][0].toInt(), 4);
        DbfTable t = comuni();
        t.rows.push_back({QStringLiteral("05"), QStringLiteral("Aggiunto"), qlonglong(1), 1.0, QVariant()});
        QVERIFY(writeDbf(f.path(QStringLiteral("COMUNI.DBF")), t).ok());
        QCOMPARE(folder.query(QStringLiteral("select count(*) from comuni"))->rows[0][0].toInt(), 5);
        t.rows[0][1] = QStringLiteral("Cambiato"); // same size, newer time
        QTest::qWait(20);
        QVERIFY(writeDbf(f.path(QStringLiteral("COMUNI.DBF")), t).ok());
        QCOMPARE(folder.query(QStringLiteral("select label from comuni where pop = 10"))->rows[0][0].toString(),
                 QStringLiteral("Cambiato"));
        QVERIFY(QFile::remove(f.path(QStringLiteral("COMUNI.DBF"))));
        auto gone = folder.query(QStringLiteral("select count(*) from comuni"));
        QVERIFY(!gone.ok());
        QVERIFY2(gone.errorMessage().startsWith(QStringLiteral("Tabella non trovata")),
                 qPrintable(gone.errorMessage()));
    }

    void shapefileTableKeepsItsRecordCount()
    {
        Fixture f;
        QVERIFY(QFile::remove(f.path(QStringLiteral("COMUNI.DBF"))));
        QVERIFY(writePointShapefile(f.path(QStringLiteral("COMUNI.shp")), 4));
        QVERIFY(writeDbf(f.path(QStringLiteral("COMUNI.dbf")), comuni()).ok());
        const QByteArray shp = test::readFile(f.path(QStringLiteral("COMUNI.shp")));
        DbfFolder folder(f.dir.path());
        const QByteArray before = test::readFile(f.path(QStringLiteral("COMUNI.dbf")));
        QVERIFY(!folder.run(QStringLiteral("DELETE FROM comuni WHERE POP = 10")).ok());
        QVERIFY(!folder.run(QStringLiteral("DROP TABLE comuni")).ok());
        QCOMPARE(test::readFile(f.path(QStringLiteral("COMUNI.dbf"))), before);
        QCOMPARE(folder.query(QStringLiteral("select count(*) from comuni"))->rows[0][0].toInt(), 4);
        QVERIFY(folder.run(QStringLiteral("UPDATE comuni SET POP = 0")).ok());
        QCOMPARE(test::readFile(f.path(QStringLiteral("COMUNI.shp"))), shp);
    }

    void errorsAreItalian_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("start");
        QTest::newRow("table") << "select * from assente"
                               << "Tabella non trovata";
        QTest::newRow("field") << "select nessuno from comuni"
                               << "Campo non trovato";
        QTest::newRow("value too wide") << "update comuni set PROG_MONT = 'troppo lungo'"
                                        << "Campo PROG_MONT";
        QTest::newRow("unsupported") << "CREATE TABLE x (a TEXT)"
                                     << "Istruzione non supportata";
    }
    void errorsAreItalian()
    {
        QFETCH(QString, sql);
        QFETCH(QString, start);
        Fixture f;
        DbfFolder folder(f.dir.path());
        auto r = folder.run(sql);
        QVERIFY(!r.ok());
        QVERIFY2(r.errorMessage().startsWith(start), qPrintable(r.errorMessage()));
        QCOMPARE(folder.table(QStringLiteral("comuni"))->rows[0][0].toString(), QStringLiteral("01"));
    }
};

QTEST_GUILESS_MAIN(TestDbfFolder)
#include "test_dbf_folder.moc"
