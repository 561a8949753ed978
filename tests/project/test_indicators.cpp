// Field names to indicator descriptions and back.
#include "project/Indicators.h"
#include "project/SettingsFixture.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

StructureTable structure()
{
    StructureTable t;
    t.rows.push_back({QStringLiteral("PROG_MONT"), QStringLiteral("Codice comunità"), QStringLiteral("commont"),
                      QStringLiteral("0"), QStringLiteral("-1")});
    t.rows.push_back({QStringLiteral("SUP_KMQ"), QStringLiteral("Superficie"), QStringLiteral("commont"),
                      QStringLiteral("-1"), QStringLiteral("0")});
    return t;
}

void fillIndicators(const TinyHome &h)
{
    h.sql(QStringLiteral("INSERT INTO CATEGORIE VALUES ('03','Popolazione')"));
    h.sql(QStringLiteral("INSERT INTO CATEGORIE VALUES ('04','Territorio d''alta quota')"));
    h.sql(QStringLiteral("INSERT INTO INDICATORI (ind,cod_ind,Cat) VALUES ('Densità abitativa','03010','Popolazione')"));
    h.sql(QStringLiteral("INSERT INTO INDICATORI (ind,cod_ind,Cat) VALUES ('Quota d''altitudine','ab123','Territorio d''alta quota')"));
}

}  // namespace

class TestIndicators : public QObject {
    Q_OBJECT
private slots:
    void fieldToDescription_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("description");
        QTest::newRow("structure row, any case") << "sup_kmq" << "03" << "Superficie";
        QTest::newRow("old form within category") << "I010" << "03" << "DENSITÀ ABITATIVA";
        QTest::newRow("old form, other category") << "I010" << "04" << "";
        QTest::newRow("code form") << "_ab123" << "00" << "QUOTA D'ALTITUDINE";
        QTest::newRow("unknown code") << "_ZZ999" << "03" << "";
    }
    void fieldToDescription()
    {
        QFETCH(QString, field);
        QFETCH(QString, category);
        QFETCH(QString, description);
        TinyHome h;
        fillIndicators(h);
        const StructureTable t = structure();
        QCOMPARE(Indicators(t, h.db()).fieldToDescription(field, category), description);
    }

    void descriptionToField_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("field");
        QTest::newRow("structure alias") << "SUPERFICIE" << "00" << "SUP_KMQ";
        QTest::newRow("indicator") << "Densità abitativa" << "03" << "_03010";
        QTest::newRow("apostrophes in both texts") << "Quota d'altitudine" << "04" << "_AB123";
        QTest::newRow("no category chosen") << "Densità abitativa" << "00" << "";
        QTest::newRow("wrong category") << "Densità abitativa" << "04" << "";
        QTest::newRow("unknown category") << "Densità abitativa" << "99" << "";
    }
    void descriptionToField()
    {
        QFETCH(QString, description);
        QFETCH(QString, category);
        QFETCH(QString, field);
        TinyHome h;
        fillIndicators(h);
        const StructureTable t = structure();
        QCOMPARE(Indicators(t, h.db()).descriptionToField(description, category), field);
    }

    void structureRowsNeverReachTheDatabase()
    {
        // A database that cannot be opened: only the in-memory rows can answer.
        const StructureTable t = structure();
        const Indicators ind(t, ReferenceDb(QStringLiteral("/nonexistent/dati/mervola.sqlite")));
        QCOMPARE(ind.fieldToDescription(QStringLiteral("PROG_MONT"), QStringLiteral("03")),
                 QStringLiteral("Codice comunità"));
        QCOMPARE(ind.descriptionToField(QStringLiteral("codice COMUNITÀ"), QStringLiteral("03")),
                 QStringLiteral("PROG_MONT"));
        QCOMPARE(ind.fieldToDescription(QStringLiteral("I010"), QStringLiteral("03")), QString());
    }

    void codesAndFolders()
    {
        QCOMPARE(Indicators::indicatorCode(QStringLiteral("I010"), QStringLiteral("03")), QStringLiteral("03010"));
        QCOMPARE(Indicators::indicatorCode(QStringLiteral("_AB123"), QStringLiteral("03")), QStringLiteral("AB123"));
        QCOMPARE(folderOfPath(QStringLiteral("/a/b/c.dbf")), QStringLiteral("/a/b"));
        QCOMPARE(folderOfPath(QStringLiteral("C:\\dati\\x.mdb")), QStringLiteral("C:/dati"));
    }
};

QTEST_GUILESS_MAIN(TestIndicators)
#include "test_indicators.moc"
