// Classifying a field of a theme of a generated atlas home, as the command
// line does, and rebuilding it from the settings strings it would save.
#include "atlas/AtlasBuilder.h"
#include "classify/ClassItems.h"
#include "classify/ColumnReader.h"
#include "classify/ThemeClassify.h"
#include "platform/AtlasHome.h"
#include "platform/Messages.h"
#include "platform/dbf/DbfTable.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;
using namespace mervola::classify;

class TestThemeField : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void methods_data();
    void methods();
    void unknownFieldIsAnError();

private:
    QTemporaryDir m_dir;
    QString m_home;
    QString m_numericField;
};

void TestThemeField::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_home = m_dir.path() + QStringLiteral("/home");
    const Status built = atlas::buildDemoAtlas(m_home);
    QVERIFY2(built.ok(), qPrintable(built.errorMessage()));
    const Result<DbfTable> table = readDbf(AtlasHome(m_home).italia() + QStringLiteral("/comuni.dbf"));
    QVERIFY(table.ok());
    for (const DbfField &f : table->fields)
        if ((f.type == DbfType::Numeric || f.type == DbfType::Float) && f.name.startsWith(QLatin1Char('_'))) {
            m_numericField = f.name;
            break;
        }
    QVERIFY(!m_numericField.isEmpty());
}

void TestThemeField::methods_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<int>("classes");
    QTest::newRow("quantile") << "quantile" << 5;
    QTest::newRow("regolari") << "REGOLARI" << 4;
    QTest::newRow("quantile, more than 50 classes, default Yes") << "quantile" << 60;
}

void TestThemeField::methods()
{
    QFETCH(QString, method);
    QFETCH(int, classes);
    MessageRecorder rec;
    const AtlasHome home(m_home);
    const QString keyword = methodFromName(method);
    const Result<ClassifyOutcome> r = classifyThemeField(home, QStringLiteral("COMUNI"), m_numericField.toLower(),
                                                         keyword, classes, 1);
    QVERIFY2(r.ok(), qPrintable(r.errorMessage()));
    QVERIFY(r->ok());
    const Classification &c = r->classification;
    QVERIFY(int(c.classes.size()) <= classes);
    const Result<FieldColumn> col = readFieldColumn(home.italia() + QStringLiteral("/comuni.dbf"), m_numericField);
    QVERIFY(col.ok());
    int total = 0;
    for (const ClassRange &cr : c.classes)
        total += cr.count;
    QCOMPARE(total, col->recordCount() - col->nullCount());  // every element lands in a class
    QCOMPARE(c.classes.front().fillColor, 14809854);         // "Giallo monocromatico"

    const QJsonObject json = outcomeJson(QStringLiteral("comuni"), *r, m_numericField, keyword, classes);
    QCOMPARE(json.value(QStringLiteral("status")).toString(), QStringLiteral("ok"));
    QCOMPARE(json.value(QStringLiteral("classes")).toArray().size(), int(c.classes.size()));

}

void TestThemeField::unknownFieldIsAnError()
{
    const Result<ClassifyOutcome> r =
        classifyThemeField(AtlasHome(m_home), QStringLiteral("comuni"), QStringLiteral("NOFIELD"), kQuantile, 5, 0);
    QVERIFY(!r.ok());
    QVERIFY(r.errorMessage().contains(QStringLiteral("NOFIELD")));
    QVERIFY(!classifyThemeField(AtlasHome(m_home), QStringLiteral("assente"), QStringLiteral("Label"), kUnico, 0, 0));
}

QTEST_GUILESS_MAIN(TestThemeField)
#include "test_theme_field.moc"
