// Text tables as users save them: which columns are numbers, which are
// codes and text, and the values read, for the forms a spreadsheet writes.
#include "project/JoinSource.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

class TestJoinTextSource : public QObject
{
    Q_OBJECT

private slots:
    // One column "V" after a key column; the family and first value read.
    void columnKinds_data()
    {
        QTest::addColumn<QByteArray>("values"); // the V cells, one per line
        QTest::addColumn<QString>("family");
        QTest::addColumn<QVariant>("first");
        QTest::newRow("decimal comma") << QByteArray("94,79\n-0,5") << "Numerico" << QVariant(94.79);
        QTest::newRow("decimal point") << QByteArray("94.79\n3") << "Numerico" << QVariant(94.79);
        QTest::newRow("grouped thousands") << QByteArray("1.234.567,5\n2") << "Numerico" << QVariant(1234567.5);
        QTest::newRow("exponent") << QByteArray("1,5E3\n2") << "Numerico" << QVariant(1500.0);
        QTest::newRow("integers") << QByteArray("12\n-7") << "Numerico" << QVariant(12LL);
        QTest::newRow("leading zeros") << QByteArray("001001\n100001") << "Alfanumerico" << QVariant("001001");
        QTest::newRow("zero zero") << QByteArray("00\n1") << "Alfanumerico" << QVariant("00");
        QTest::newRow("single zero") << QByteArray("0\n0,25") << "Numerico" << QVariant(0.0);
        QTest::newRow("quoted on purpose") << QByteArray("\"12\"\n13") << "Alfanumerico" << QVariant("12");
        QTest::newRow("points as groups only") << QByteArray("1.234.567\n2") << "Alfanumerico" << QVariant("1.234.567");
        QTest::newRow("mixed text") << QByteArray("12\nn.d.") << "Alfanumerico" << QVariant("12");
        QTest::newRow("empty cells") << QByteArray("\n5") << "Numerico" << QVariant();
    }
    void columnKinds()
    {
        QFETCH(QByteArray, values);
        QFETCH(QString, family);
        QFETCH(QVariant, first);
        QTemporaryDir dir;
        QByteArray text = "K;V\n";
        int n = 0;
        for (const QByteArray &v : values.split('\n'))
            text += "k" + QByteArray::number(++n) + ";" + v + "\n";
        QVERIFY(writeFile(dir.filePath(QStringLiteral("t.txt")), text));
        auto t = readTextSource(dir.filePath(QStringLiteral("t.txt")));
        QVERIFY(t.ok());
        QCOMPARE(familyText(familyOfType(t->fields[1].engineType)), family);
        const QVariant v = t->table.rows[0][1];
        if (first.typeId() == QMetaType::Double)
            QCOMPARE(v.toDouble(), first.toDouble());
        else
            QCOMPARE(v, first);
    }

    // Separators, BOM, CR LF, quotes holding separators, quotes and line
    // breaks, trailing empty columns, missing and repeated names, Windows-1252.
    void spreadsheetForms()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("t.csv"));
        QVERIFY(writeFile(path, "\xEF\xBB\xBF"
                                "COD,Nome,Nome,,Quota,,\r\n"
                                "001001,\"Agli\xC3\xA8, \"\"Canavese\"\"\",x,y,\"250,5\",,\r\n"
                                "001002,\"Riga\r\nlunga\",x,y,\"3,0\",,\r\n"));
        auto t = readTextSource(path);
        QVERIFY(t.ok());
        QStringList names;
        for (const SourceField &f : t->fields)
            names << f.name;
        QCOMPARE(names, QStringList({"COD", "Nome", "Nome_2", "CAMPO4", "Quota"}));
        QCOMPARE(t->table.rowCount(), size_t(2));
        QCOMPARE(t->table.rows[0][1].toString(), QStringLiteral("Agliè, \"Canavese\""));
        QCOMPARE(t->table.rows[1][1].toString(), QStringLiteral("Riga\r\nlunga"));
        QCOMPARE(t->table.rows[0][4].toDouble(), 250.5);
        QCOMPARE(familyOfType(t->fields[0].engineType), FieldFamily::Alphanumeric);

        QVERIFY(writeFile(path, "COD\tNOME\tEURO\r\n001001\tAgli\xE8\t\x80 5\r\n"));
        t = readTextSource(path);
        QCOMPARE(t->table.rows[0][1].toString(), QStringLiteral("Agliè"));
        QCOMPARE(t->table.rows[0][2].toString(), QStringLiteral("€ 5"));
    }
};

QTEST_GUILESS_MAIN(TestJoinTextSource)
#include "test_join_text_source.moc"
