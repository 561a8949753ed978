// dBase files through GDAL: real fixtures, round trips of types, widths,
// decimals, nulls and code pages, the dBase limits and safe replacement.
#include "platform/dbf/DbfTable.h"
#include "support/TestSupport.h"

#include <QDate>
#include <QTemporaryDir>
#include <QtTest>
#include <ctime>

using namespace mervola;

namespace
{

QString fixture(const QString &name)
{
    return test::fixturePath(name);
}

DbfTable sampleTable()
{
    DbfTable t;
    t.fields = {
        {QStringLiteral("LABEL"), DbfType::Text, 30, 0},     {QStringLiteral("POP"), DbfType::Numeric, 9, 0},
        {QStringLiteral("AREA"), DbfType::Numeric, 18, 5},   {QStringLiteral("QUOTA"), DbfType::Float, 12, 3},
        {QStringLiteral("MONTANO"), DbfType::Logical, 1, 0}, {QStringLiteral("ISTITUITO"), DbfType::Date, 8, 0}};
    t.rows.push_back(
        {QStringLiteral("Città di Castello"), qlonglong(39000), 387.32145, 288.5, true, QDate(1861, 3, 17)});
    t.rows.push_back({QStringLiteral("Valle d'Aosta"), qlonglong(-12), -0.5, QVariant(), false, QVariant()});
    t.rows.push_back({QVariant(), QVariant(), QVariant(), 1.25, QVariant(), QDate(2000, 1, 1)});
    return t;
}

} // namespace

class TestDbfTable : public QObject
{
    Q_OBJECT
private slots:
    void realFixtures()
    {
        const QString people = fixture(QStringLiteral("people.dbf"));
        auto p = readDbf(people);
        QVERIFY2(p.ok(), qPrintable(p.errorMessage()));
        QCOMPARE(p->rowCount(), size_t(2)); // the third record is deleted
        QCOMPARE(p->fields[1].type, DbfType::Date);
        QCOMPARE(p->rows[1][1].toDate(), QDate(1980, 11, 12));

        auto l = readDbf(fixture(QStringLiteral("latin1.dbf")));
        QVERIFY2(l.ok(), qPrintable(l.errorMessage()));
        QCOMPARE(l->rows[0][1].toString(), QStringLiteral("Ñandú"));
        QCOMPARE(l->encoding, QStringLiteral("ISO-8859-1"));

        auto b = readDbf(fixture(QStringLiteral("blockgroups.dbf")));
        QVERIFY2(b.ok(), qPrintable(b.errorMessage()));
        QCOMPARE(b->rowCount(), size_t(663));
        QCOMPARE(b->columnCount(), 43);
        const DbfField area = b->fields[b->fieldIndex(QStringLiteral("area"))];
        QCOMPARE(area.type, DbfType::Numeric);
        QCOMPARE(area.width, 18);
        QCOMPARE(area.decimals, 5);
    }

    void rewritingKeepsSourceEncoding()
    {
        const QString latin1 = fixture(QStringLiteral("latin1.dbf"));
        QTemporaryDir dir;
        const QString copy = dir.filePath(QStringLiteral("latin1.dbf"));
        QVERIFY(QFile::copy(latin1, copy));
        auto t = readDbf(copy);
        QVERIFY(t.ok());
        QVERIFY(writeDbf(copy, *t).ok());
        QVERIFY(test::readFile(copy).contains(QByteArray("\xD1"
                                                         "and\xFA"))); // still one byte per letter
        auto again = readDbf(copy);
        QVERIFY(again.ok());
        QCOMPARE(again->rows[0][1].toString(), QStringLiteral("Ñandú"));
        QCOMPARE(again->fields, t->fields);
    }

    void roundTrip_data()
    {
        QTest::addColumn<QString>("encoding");
        QTest::newRow("utf-8") << QStringLiteral("UTF-8");
        QTest::newRow("latin-1") << QStringLiteral("ISO-8859-1");
        QTest::newRow("cp1252") << QStringLiteral("CP1252");
    }
    void roundTrip()
    {
        QFETCH(QString, encoding);
        QTemporaryDir dir;
        DbfTable t = sampleTable();
        t.encoding = encoding;
        const QString path = dir.filePath(QStringLiteral("comuni.dbf"));
        QVERIFY(writeDbf(path, t).ok());
        QCOMPARE(QString::fromLatin1(test::readFile(dir.filePath(QStringLiteral("comuni.cpg")))).trimmed(), encoding);
        auto r = readDbf(path);
        QVERIFY2(r.ok(), qPrintable(r.errorMessage()));
        QCOMPARE(r->fields, t.fields);
        QCOMPARE(r->encoding.toUpper(), encoding.toUpper());
        QCOMPARE(r->rowCount(), t.rowCount());
        for (size_t i = 0; i < t.rowCount(); ++i)
            for (int c = 0; c < t.columnCount(); ++c) {
                const QVariant &want = t.rows[i][size_t(c)];
                const QVariant &got = r->rows[i][size_t(c)];
                QVERIFY2(want.isNull() == got.isNull(), qPrintable(QStringLiteral("row %1 col %2").arg(i).arg(c)));
                if (want.typeId() == QMetaType::Double)
                    QCOMPARE(got.toDouble(), want.toDouble());
                else if (!want.isNull())
                    QCOMPARE(got, want);
            }
    }

    void limitsRefused_data()
    {
        QTest::addColumn<int>("fieldCount");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("messagePart");
        QTest::newRow("name of 11") << 2 << QStringLiteral("ABCDEFGHIJK") << QStringLiteral("10 caratteri");
        QTest::newRow("256 fields") << 256 << QString() << QStringLiteral("255 campi");
        QTest::newRow("duplicate") << 2 << QStringLiteral("label") << QStringLiteral("più volte");
    }
    void limitsRefused()
    {
        QFETCH(int, fieldCount);
        QFETCH(QString, name);
        QFETCH(QString, messagePart);
        DbfTable t;
        t.fields.append({QStringLiteral("LABEL"), DbfType::Text, 10, 0});
        for (int i = 1; i < fieldCount; ++i)
            t.fields.append({name.isEmpty() ? QStringLiteral("F%1").arg(i) : name, DbfType::Numeric, 5, 0});
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("t.dbf"));
        const Status s = writeDbf(path, t);
        QVERIFY(!s.ok());
        QVERIFY2(s.errorMessage().contains(messagePart), qPrintable(s.errorMessage()));
        QVERIFY(!QFileInfo::exists(path));
        t.fields.removeLast();
        if (fieldCount == 256)
            QVERIFY(writeDbf(path, t).ok()); // 255 is the largest accepted count
    }

    void valueThatDoesNotFitKeepsOldFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("t.dbf"));
        DbfTable t = sampleTable();
        QVERIFY(writeDbf(path, t).ok());
        const QByteArray before = test::readFile(path);
        t.rows[0][1] = qlonglong(1234567890); // 10 digits into N(9,0)
        const Status s = writeDbf(path, t);
        QVERIFY(!s.ok());
        QVERIFY(s.errorMessage().contains(QStringLiteral("POP")));
        QCOMPARE(test::readFile(path), before);
    }

    void shapefileSiblingsUntouched()
    {
        QTemporaryDir dir;
        const QByteArray shp("not really a shape file");
        QVERIFY(test::writeFile(dir.filePath(QStringLiteral("COMUNI.shp")), shp));
        QVERIFY(test::writeFile(dir.filePath(QStringLiteral("COMUNI.shx")), shp));
        QVERIFY(writeDbf(dir.filePath(QStringLiteral("COMUNI.dbf")), sampleTable()).ok());
        QCOMPARE(test::readFile(dir.filePath(QStringLiteral("COMUNI.shp"))), shp);
        QCOMPARE(test::readFile(dir.filePath(QStringLiteral("COMUNI.shx"))), shp);
        QStringList entries =
            QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::AllDirs | QDir::NoDotAndDotDot);
        entries.sort();
        QCOMPARE(entries, (QStringList{"COMUNI.cpg", "COMUNI.dbf", "COMUNI.shp", "COMUNI.shx"}));
    }

    void largeTableIsFast()
    {
        DbfTable t;
        t.fields.append({QStringLiteral("LABEL"), DbfType::Text, 40, 0});
        for (int c = 1; c < 40; ++c)
            t.fields.append({QStringLiteral("_I%1").arg(c, 4, 10, QLatin1Char('0')), DbfType::Numeric, 14, c % 3});
        for (int r = 0; r < 7899; ++r) {
            std::vector<QVariant> row{QVariant(QStringLiteral("Comune %1").arg(r))};
            for (int c = 1; c < 40; ++c)
                row.push_back(c % 3 ? QVariant(r * 1.25 + c) : QVariant(qlonglong(r * c)));
            t.rows.push_back(std::move(row));
        }
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("big.dbf"));
        QVERIFY(writeDbf(dir.filePath(QStringLiteral("warm.dbf")), sampleTable()).ok()); // drivers registered
        // Processor time, so that a busy machine does not distort the figures.
        const auto cpuMs = [] { return qint64(std::clock() * 1000.0 / CLOCKS_PER_SEC); };
        qint64 start = cpuMs();
        QVERIFY(writeDbf(path, t).ok());
        const qint64 writeMs = cpuMs() - start;
        start = cpuMs();
        auto r = readDbf(path);
        const qint64 readMs = cpuMs() - start;
        QVERIFY(r.ok());
        QCOMPARE(r->rowCount(), size_t(7899));
        qInfo("7899 x 40: write %lld ms, read %lld ms (processor time)", writeMs, readMs);
        QVERIFY(readMs < 1000 && writeMs < 1000); // loose bound: sanitizer builds are slow
    }
};

QTEST_GUILESS_MAIN(TestDbfTable)
#include "test_dbf_table.moc"
