// A join seen from a theme of a real (demo) atlas: the settings file after a
// join, the map layer re-reading its columns, the stored join re-run when the
// theme is loaded again, and removal bringing back the pristine table.
#include "test_join_fixture.h"

#include "atlas/AtlasBuilder.h"
#include "platform/Messages.h"
#include "map/MapModel.h"
#include "project/JoinNames.h"
#include "project/JoinTheme.h"
#include "project/PristineSettings.h"
#include "project/ThemeSettings.h"

#include <QFile>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

class TestJoinTheme : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    AtlasHome m_home;

    QString shp() const { return m_home.italia() + QStringLiteral("/cmont_01.shp"); }
    QString dbf() const { return resolveCaseInsensitive(m_home.italia(), QStringLiteral("cmont_01.dbf")); }
    QString ini() const { return m_home.supporto() + QStringLiteral("/cmont_01.ini"); }
    QString extFolder() const { return m_dir.filePath(QStringLiteral("ext")); }

    int rowsOf(const QString &sql) const
    {
        auto rs = ReferenceDb(m_home).query(sql);
        return rs ? int(rs->size()) : -1;
    }

private slots:
    void initTestCase()
    {
        m_home = AtlasHome(m_dir.filePath(QStringLiteral("home")));
        QVERIFY(atlas::buildDemoAtlas(m_home.root()).ok());
        QVERIFY(QFile::exists(ini()));
        auto theme = readDbf(dbf());
        QVERIFY(theme.ok() && theme->rowCount() > 0);
        // One external row per community, keyed by its code, in reverse order.
        DbfTable ext;
        ext.fields = {textField(QStringLiteral("PROG_MONT"), 10), numberField(QStringLiteral("VAL"))};
        const int key = theme->fieldIndex(QStringLiteral("PROG_MONT"));
        for (int i = int(theme->rowCount()) - 1; i >= 0; --i)
            ext.rows.push_back({theme->rows[size_t(i)][size_t(key)], qlonglong(i + 1)});
        QDir().mkpath(extFolder());
        QVERIFY(writeDbf(extFolder() + QStringLiteral("/cm.dbf"), ext).ok());
    }

    void joinRewritesSettingsAndLayerRereadsColumns()
    {
        map::MapModel model;
        QVERIFY(model.addShapefile(shp(), QStringLiteral("cmont_01")).ok());
        const int before = int(model.find(QStringLiteral("cmont_01"))->data->columns.size());

        auto source = readDbaseSource(extFolder() + QStringLiteral("/cm.dbf"));
        auto theme = readDbf(dbf());
        QStringList themeFields;
        for (const DbfField &f : theme->fields)
            themeFields << f.name;
        const ReferenceDb db(m_home);
        const StagingContext ctx{JoinSourceType::DbaseIV, extFolder(), QStringLiteral("cm.dbf"), m_home.italia(),
                                 QStringLiteral("cmont_01")};
        QList<StagedField> rows = stagedRowsFor(ctx, source->fields, themeFields);
        rows[1].aliasCampo = QStringLiteral("valore");
        QVERIFY(stageFields(db, rows).ok());

        JoinRequest request{shp(), JoinSourceType::DbaseIV, extFolder(), QStringLiteral("cm.dbf"),
                            QStringLiteral("cm.dbf"), QStringLiteral("PROG_MONT"), QStringLiteral("PROG_MONT"), 0};
        LayerState layer;
        layer.name = QStringLiteral("cmont_01");
        layer.folder = m_home.italia();
        layer.baseName = QStringLiteral("cmont_01");
        auto outcome = runJoin(db, request, ini(), layer);
        QVERIFY2(outcome.ok(), qPrintable(outcome.errorMessage()));
        QCOMPARE(outcome->addedFields, QStringList({"zPROG_MONT", "valore"}));

        const ThemeSettings s = readThemeSettingsFile(ini(), QStringLiteral("cmont_01"));
        QCOMPARE(s.join.nomeDb, QStringLiteral("cm.dbf"));
        QCOMPARE(s.join.campoJoinInt, QStringLiteral("PROG_MONT"));
        QCOMPARE(s.join.shpCollegato, QStringLiteral("cmont_01.shp"));
        QCOMPARE(s.structJoin, QStringList({"zPROG_MONT", "valore"}));

        QVERIFY(reloadLayerAttributes(model, QStringLiteral("cmont_01")).ok());
        const auto &data = model.find(QStringLiteral("cmont_01"))->data;
        QCOMPARE(int(data->columns.size()), before + 2);
        QVERIFY(data->columnIndex(QStringLiteral("valore")) >= 0);
    }

    void storedJoinRunsAgainWhenThemeIsLoaded()
    {
        // As opening a project does: pristine tables, empty bookkeeping, then load.
        QVERIFY(restoreThemeTable(m_home, QStringLiteral("cmont_01")).ok());
        QVERIFY(ReferenceDb(m_home).executeAll({"DELETE * FROM CAMPIJOIN", "DELETE * FROM LISTAJOIN",
                                                "DELETE * FROM STRUCTJOIN"}).ok());
        QVERIFY(readDbf(dbf())->fieldIndex(QStringLiteral("valore")) < 0);

        auto loaded = loadThemeFile(ini(), QStringLiteral("cmont_01"), {m_home.root(), false});
        QVERIFY(loaded.ok());
        QVERIFY(loaded->settings.join.isSet());
        auto outcome = rejoinTheme(m_home, loaded.value());
        QVERIFY2(outcome.ok(), qPrintable(outcome.errorMessage()));
        // The column comes back under the alias it was given.
        QCOMPARE(outcome->addedFields, QStringList({"zPROG_MONT", "valore"}));
        auto table = readDbf(dbf());
        QVERIFY(table->fieldIndex(QStringLiteral("VAL")) < 0);
        QCOMPARE(table->rows[0][size_t(table->fieldIndex(QStringLiteral("valore")))].toLongLong(), 1LL);
        QCOMPARE(rowsOf(QStringLiteral("Select * from CAMPIJOIN")), 2);
    }

    void removingJoinRestoresPristineTable()
    {
        const QByteArray pristine = readFile(resolveCaseInsensitive(m_home.originali(), QStringLiteral("cmont_01.dbf")));
        QVERIFY(!pristine.isEmpty());
        QVERIFY(readFile(dbf()) != pristine);
        QVERIFY(removeJoin(m_home, shp(), ini()).ok());
        QCOMPARE(readFile(dbf()), pristine);
        QVERIFY(!QFile::exists(joinBackupPath(dbf())));
        QCOMPARE(rowsOf(QStringLiteral("Select * from CAMPIJOIN")), 0);
        QCOMPARE(rowsOf(QStringLiteral("Select * from LISTAJOIN")), 0);
        const ThemeSettings s = readThemeSettingsFile(ini(), QStringLiteral("cmont_01"));
        QVERIFY(!s.join.isSet());
        QVERIFY(s.structJoin.isEmpty());
    }

    // Without the recorded names (a project from another atlas home) the
    // names still find their fields: own names, automatic conflict names,
    // and an alias takes the next field after its neighbour.
    void rejoinColumnsWithoutRecordedNames()
    {
        const StagingContext ctx{JoinSourceType::Text, QStringLiteral("/x"), QStringLiteral("a.txt"), m_home.italia(),
                                 QStringLiteral("cmont_01")};
        QList<StagedField> rows = stagedRowsFor(
            ctx,
            {{QStringLiteral("COD"), JoinFieldType::Text}, {QStringLiteral("NOME"), JoinFieldType::Text},
             {QStringLiteral("NOTA"), JoinFieldType::Text}, {QStringLiteral("POP"), JoinFieldType::Long},
             {QStringLiteral("Label"), JoinFieldType::Text}},
            {QStringLiteral("Label"), QStringLiteral("PROG_MONT")});
        chooseRejoinColumns(rows,
                            {QStringLiteral("COD"), QStringLiteral("nome_com"), QStringLiteral("POP"),
                             QStringLiteral("zLabel")},
                            {}, QStringLiteral("COD"));
        QStringList included;
        for (const StagedField &r : rows)
            if (r.incluso)
                included << r.nomeCampo + QLatin1Char('>') + r.outputName();
        QCOMPARE(included, QStringList({"COD>COD", "NOME>nome_com", "POP>POP", "Label>zLabel"}));

        // A recorded name wins over the order.
        chooseRejoinColumns(rows, {QStringLiteral("nome_com")}, {{QStringLiteral("NOME_COM"), QStringLiteral("NOTA")}},
                            QStringLiteral("COD"));
        QCOMPARE(rows[2].outputName(), QStringLiteral("nome_com"));
        QVERIFY(rows[2].incluso && !rows[1].incluso && !rows[3].incluso);
    }

    void failedRejoinKeepsThemeLoadable()
    {
        LoadedTheme theme;
        theme.shapefilePath = shp();
        theme.settings.join = JoinFields::parse(QStringLiteral("/nonesiste^x.dbf^x.dbf^PROG_MONT^PROG_MONT^cmont_01.shp^"));
        MessageRecorder recorder;
        QVERIFY(makeRejoinHook(m_home)(theme).ok());
        QCOMPARE(recorder.entries().size(), 1);
        QCOMPARE(recorder.entries().first().text, JoinText::kSourceUnreadable);
    }
};

QTEST_GUILESS_MAIN(TestJoinTheme)
#include "test_join_theme.moc"
