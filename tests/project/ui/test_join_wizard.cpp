// The join wizard shown and driven through its controls on the atlas built
// from the real sources: the files a statistician really has (every
// municipality name in a text file, spreadsheet CSVs, a GDAL dBase, a
// Latin-1 dBase, the Access fixtures), sources named Copia.*, the conflict
// window, and a join interrupted at each of its steps.
#include "platform/Messages.h"
#include "project/JoinTheme.h"
#include "project/StructureTable.h"
#include "project/ui/JoinConflitti.h"
#include "project/ui/ListMdb.h"
#include "support/JoinSources.h"
#include "support/Modal.h"

#include <QApplication>
#include <QComboBox>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace
{

struct Atlas {
    QTemporaryDir dir;
    AtlasHome home;
    QString ext; // the user's folder of source files
    Atlas()
    {
        QVERIFY(copyRealAtlas(dir.filePath(QStringLiteral("home"))));
        home = AtlasHome(dir.filePath(QStringLiteral("home")));
        ext = dir.filePath(QStringLiteral("dati utente"));
        QDir().mkpath(ext);
    }
    QString comuniDbf() const { return home.italia() + QStringLiteral("/comuni.dbf"); }
    QString comuniIni() const { return home.supporto() + QStringLiteral("/comuni.ini"); }
    JoinTarget target() const
    {
        auto t = themeOnDisk(home, QStringLiteral("comuni"));
        JoinTarget j;
        j.home = home;
        j.shapefilePath = t->shapefilePath;
        j.layerIndex = 1;
        j.layer = t->layer;
        j.iniPath = t->iniPath;
        j.structure = readStructureTable(ReferenceDb(home)).valueOr({});
        return j;
    }
};

// The wizard on screen, driven as a user would.
class Driver
{
public:
    explicit Driver(const JoinTarget &target) : w(target)
    {
        w.setFileChooser([this](const QString &, const QString &filter) {
            askedFilter = filter;
            return file;
        });
        w.show();
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
    }
    void press(const char *name) { w.findChild<QPushButton *>(QString::fromLatin1(name))->click(); }
    // Step 1: the kind of source and the file.
    void choose(const char *radio, const QString &path)
    {
        w.findChild<QRadioButton *>(QString::fromLatin1(radio))->click();
        file = path;
        press("cmd_avanti");
    }
    QAbstractItemModel *grid() const { return w.findChild<QTableView *>(QStringLiteral("dbg_Alias"))->model(); }
    int row(const QString &field) const
    {
        for (int r = 0; r < grid()->rowCount(); ++r)
            if (grid()->index(r, 1).data().toString() == field)
                return r;
        return -1;
    }
    // Edits a grid cell through its editor (the "Sì"/"No" combo or the alias box).
    void edit(const QString &field, int column, const QString &value)
    {
        auto *view = w.findChild<QTableView *>(QStringLiteral("dbg_Alias"));
        const QModelIndex index = view->model()->index(row(field), column);
        view->setCurrentIndex(index);
        view->edit(index);
        QWidget *editor = nullptr;
        if (auto *combo = view->findChild<QComboBox *>(QStringLiteral("cmb_SiNo"))) {
            combo->setCurrentText(value);
            editor = combo;
        } else if (auto *line = view->findChild<QLineEdit *>(QStringLiteral("txtAlias"))) {
            line->setText(value);
            editor = line;
        }
        QVERIFY(editor);
        QTest::keyClick(editor, Qt::Key_Return); // the view commits and closes the editor on its next turn
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    // With MERVOLA_SCREENSHOTS set, the window as the user sees it, for review.
    void shot(const char *name)
    {
        const QString dir = qEnvironmentVariable("MERVOLA_SCREENSHOTS");
        QApplication::processEvents();
        if (!dir.isEmpty())
            w.grab().save(dir + QLatin1Char('/') + QString::fromLatin1(name) + QStringLiteral(".png"));
    }
    // Step 3: the two join fields, then "Fine".
    void joinOn(const QString &extField, const QString &themeField)
    {
        auto *ext = w.findChild<QComboBox *>(QStringLiteral("Combo_Ext"));
        auto *theme = w.findChild<QComboBox *>(QStringLiteral("cboJoin"));
        ext->setCurrentIndex(ext->findText(extField));
        theme->setCurrentIndex(theme->findText(themeField));
        press("cmd_avanti");
    }

    ListMdb w;
    QString file;
    QString askedFilter;
};

// A column of the joined comuni table, by COD_ISTAT.
QHash<QString, QVariant> joinedColumn(const QString &dbf, const QString &field)
{
    QHash<QString, QVariant> out;
    auto t = readDbf(dbf);
    const int c = t->fieldIndex(field), key = t->fieldIndex(QStringLiteral("COD_ISTAT"));
    if (c < 0)
        return out;
    for (const auto &r : t->rows)
        out.insert(r[size_t(key)].toString(), r[size_t(c)]);
    return out;
}

} // namespace

class TestJoinWizard : public QObject
{
    Q_OBJECT

private slots:
    // Every municipality name (accented names filling their width included)
    // comes through a UTF-8 text file joined on the ISTAT code.
    void textFileOfEveryMunicipalityName()
    {
        Atlas a;
        const QList<Municipality> all = municipalities(a.home.root());
        QCOMPARE(all.size(), 7899);
        QVERIFY(writeNamesFile(a.ext + QStringLiteral("/nomi.txt"), all));
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Text", a.ext + QStringLiteral("/nomi.txt"));
        QCOMPARE(d.w.step(), 2);
        QCOMPARE(d.grid()->index(d.row(QStringLiteral("CODICE")), 3).data().toString(), QStringLiteral("Alfanumerico"));
        d.press("cmd_avanti");
        d.joinOn(QStringLiteral("CODICE"), QStringLiteral("Codice ISTAT"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(d.w.result(), int(QDialog::Accepted));
        const auto names = joinedColumn(a.comuniDbf(), QStringLiteral("NOME"));
        QCOMPARE(names.size(), 7899);
        for (const Municipality &m : all)
            QCOMPARE(names.value(m.code).toString(), m.name);
        const QString ini = QString::fromUtf8(readFile(a.comuniIni()));
        QVERIFY(ini.contains(QStringLiteral("STRUCTJOIN =CODICE^NOME^")));
        QVERIFY(ini.contains(QStringLiteral("^nomi.txt^nomi.txt^COD_ISTAT^CODICE^comuni.shp^")));
    }

    // Spreadsheet CSVs: comma, semicolon and tab, with and without BOM, CRLF;
    // the code with leading zeros is text and the key, the decimal comma a number.
    void spreadsheetCsv_data()
    {
        QTest::addColumn<QString>("sep");
        QTest::addColumn<bool>("bom");
        for (const char *sep : {",", ";", "\t"})
            for (bool bom : {false, true})
                QTest::addRow("%s%s", *sep == '\t' ? "tab" : sep, bom ? " BOM" : "") << QString::fromLatin1(sep) << bom;
    }
    void spreadsheetCsv()
    {
        QFETCH(QString, sep);
        QFETCH(bool, bom);
        Atlas a;
        const QList<Municipality> all = municipalities(a.home.root());
        QVERIFY(writeFile(a.ext + QStringLiteral("/comuni.csv"), mervola::test::spreadsheetCsv(all, sep[0], bom)));
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Text", a.ext + QStringLiteral("/comuni.csv"));
        QCOMPARE(d.askedFilter, QStringLiteral("Text Files (*.txt);;File CSV (*.csv)"));
        QCOMPARE(d.grid()->rowCount(), 4);
        const QStringList formats = {QStringLiteral("Alfanumerico"), QStringLiteral("Alfanumerico"),
                                     QStringLiteral("Numerico"), QStringLiteral("Numerico")};
        for (int r = 0; r < 4; ++r)
            QCOMPARE(d.grid()->index(r, 3).data().toString(), formats[r]);
        d.edit(QStringLiteral("Superficie"), 2, QStringLiteral("superf"));
        d.shot("passo2-csv");
        d.press("cmd_avanti");
        d.shot("passo3-csv");
        QCOMPARE(d.w.findChild<QComboBox *>(QStringLiteral("Combo_Ext"))->findText(QStringLiteral("ISTAT")), 0);
        d.joinOn(QStringLiteral("ISTAT"), QStringLiteral("Codice ISTAT"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        const auto area = joinedColumn(a.comuniDbf(), QStringLiteral("superf"));
        const auto names = joinedColumn(a.comuniDbf(), QStringLiteral("Comune"));
        for (const Municipality &m : all) {
            QCOMPARE(area.value(m.code).toDouble(), QString::number(m.area, 'f', 2).toDouble());
            QCOMPARE(names.value(m.code).toString(), m.name);
        }
    }

    // A dBase written by GDAL declares its reals N(24,15).
    void gdalDbaseWithWideDecimals()
    {
        Atlas a;
        const QList<Municipality> all = municipalities(a.home.root());
        const QString dbf = gdalDbase(a.ext, all);
        QVERIFY(!dbf.isEmpty());
        const DbfField declared = readDbf(dbf)->fields[1];
        QCOMPARE(declared.width, 24);
        QCOMPARE(declared.decimals, 15);
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Dbase_3", dbf);
        d.press("cmd_avanti");
        d.joinOn(QStringLiteral("CODICE"), QStringLiteral("Codice ISTAT"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        const auto area = joinedColumn(a.comuniDbf(), QStringLiteral("AREA"));
        for (const Municipality &m : all)
            QVERIFY(qAbs(area.value(m.code).toDouble() - m.area) < 1e-4);
    }

    // "Agliè" fills a Latin-1 C(5) field: read as Latin-1, written in the
    // UTF-8 table in the 6 bytes it needs there.
    void latin1DbaseFillingItsWidth()
    {
        Atlas a;
        QVERIFY(writeFile(a.ext + QStringLiteral("/aglie.dbf"), latin1Dbase()));
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Dbase_3", a.ext + QStringLiteral("/aglie.dbf"));
        QCOMPARE(d.grid()->index(1, 1).data().toString(), QStringLiteral("NOME"));
        d.press("cmd_avanti");
        d.joinOn(QStringLiteral("COD"), QStringLiteral("Codice ISTAT"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(joinedColumn(a.comuniDbf(), QStringLiteral("NOME")).value(QStringLiteral("001001")).toString(),
                 QStringLiteral("Agliè"));
        QCOMPARE(readDbf(a.comuniDbf())->fields.last().width, 6);
    }

    // The dBase fixtures: Latin-1 text, a date column (listed, left out) and
    // a table of 43 numbers whose 11-character name must first be shortened.
    void dbaseFixtures_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("firstValue");
        QTest::newRow("latin1") << "latin1.dbf"
                                << "Name"
                                << "Name"
                                << "Ñandú";
        QTest::newRow("people") << "people.dbf"
                                << "NAME"
                                << "NAME"
                                << "Alice";
        QTest::newRow("blockgroups") << "blockgroups.dbf"
                                     << "BKG_KEY"
                                     << "BKG_KEY"
                                     << "060750179029";
    }
    void dbaseFixtures()
    {
        QFETCH(QString, file);
        QFETCH(QString, key);
        QFETCH(QString, column);
        QFETCH(QString, firstValue);
        Atlas a;
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Dbase_3", fixturePath(file));
        if (file == QLatin1String("blockgroups.dbf")) {
            QCOMPARE(d.w.step(), 1);
            QCOMPARE(rec.entries().size(), 1);
            QCOMPARE(rec.entries().first().text,
                     QStringLiteral("BLOCKGROUPS.DBF nome file non valido.\r\nIl nome del file non deve superare gli 8 "
                                    "caratteri (estensione esclusa):\r\nmiofile1.dbf  -> corretto \r\nmiofile1999.dbf "
                                    "-> errato."));
            rec.clear();
            QVERIFY(QFile::copy(fixturePath(file), a.ext + QStringLiteral("/blockgr.dbf")));
            d.choose("rb_Dbase_3", a.ext + QStringLiteral("/blockgr.dbf"));
        }
        QCOMPARE(d.w.step(), 2);
        d.press("cmd_avanti");
        QCOMPARE(d.w.step(), 3);
        const QStringList offered = [&] {
            QStringList items;
            auto *ext = d.w.findChild<QComboBox *>(QStringLiteral("Combo_Ext"));
            for (int i = 0; i < ext->count(); ++i)
                items << ext->itemText(i);
            return items;
        }();
        QCOMPARE(offered, QStringList{key});
        d.joinOn(key, QStringLiteral("Denominazione"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(d.w.result(), int(QDialog::Accepted));
        auto source = readDbf(fixturePath(file));
        auto joined = readDbf(a.comuniDbf());
        QVERIFY(joined->fieldIndex(column) >= 0);
        QCOMPARE(source->rows[0][size_t(source->fieldIndex(key))].toString(), firstValue);
        QCOMPARE(joined->columnCount(), 25 + (file == QLatin1String("people.dbf") ? 1 : source->columnCount()));
    }

    // Each real Access fixture joins (its tables hold no municipality, so the
    // new columns stay empty), the Unicode one included.
    void accessFixtures_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("key");
        QTest::newRow("Jet 3") << "testV1997.mdb"
                               << "Table3"
                               << "b";
        QTest::newRow("Jet 4") << "indexTestV2000.mdb"
                               << "Table2"
                               << "data";
        QTest::newRow("Jet 4 Unicode") << "testUnicodeCompV2003.mdb"
                                       << "Table"
                                       << "Unicode";
    }
    void accessFixtures()
    {
        QFETCH(QString, file);
        QFETCH(QString, table);
        QFETCH(QString, key);
        Atlas a;
        QVERIFY(QFile::copy(fixturePath(file), a.ext + QStringLiteral("/") + file));
        const QByteArray before = readFile(a.ext + QStringLiteral("/") + file);
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_MsAccess", a.ext + QStringLiteral("/") + file);
        auto *tables = d.w.findChild<QListWidget *>(QStringLiteral("lstTabelle"));
        tables->findItems(table, Qt::MatchExactly).first()->setSelected(true);
        d.press("cmd_avanti");
        d.joinOn(key, QStringLiteral("Denominazione"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(d.w.result(), int(QDialog::Accepted));
        QVERIFY(readDbf(a.comuniDbf())->fieldIndex(key) >= 0);
        QCOMPARE(readFile(a.ext + QStringLiteral("/") + file), before);
    }

    // The shown Access step: the list has the focus (and so a current row),
    // yet nothing is chosen until a table is selected. A table with a
    // column whose values cannot be read says so and leaves it out.
    void accessStepOnScreen()
    {
        Atlas a;
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_MsAccess", fixturePath(QStringLiteral("testV1997.mdb")));
        auto *tables = d.w.findChild<QListWidget *>(QStringLiteral("lstTabelle"));
        QCOMPARE(tables->count(), 4);
        tables->setFocus();
        QApplication::processEvents();
        d.press("cmd_avanti");
        QCOMPARE(d.w.step(), 2);
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text, QStringLiteral("Selezionare una tabella."));
        QCOMPARE(d.grid()->rowCount(), 0);

        rec.clear();
        QTest::mouseClick(tables->viewport(), Qt::LeftButton, {}, tables->visualItemRect(tables->item(3)).center());
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text, QStringLiteral("Formato dati non previsto."));
        QCOMPARE(d.grid()->index(1, 3).data().toString(), QStringLiteral("Non riconosciuto"));
        QCOMPARE(d.grid()->index(1, 0).data().toString(), QStringLiteral("No"));
        d.shot("passo2-access");
        d.press("cmd_avanti");
        QCOMPARE(d.w.step(), 3);

        // Including it anyway is refused on "next".
        d.press("cmd_indietro");
        d.edit(QStringLiteral("data"), 0, QStringLiteral("Sì"));
        rec.clear();
        d.press("cmd_avanti");
        QCOMPARE(d.w.step(), 2);
        QCOMPARE(rec.entries().first().text,
                 QStringLiteral("La tabella esterna contiene campi che non possono essere importati.\r\n"
                                "Verificare il formato dei campi supportati."));
    }

    // A damaged database (one that crashes libmdb, which the wizard reads
    // in a helper process) gives the unreadable-source message on the first
    // step; the wizard stays open and a sound file can be chosen next.
    void damagedAccessDatabase_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("libmdb crashes") << QStringLiteral(MERVOLA_SOURCE_DIR "/fuzz/regressions/access/libmdb-crash.mdb");
        QTest::newRow("cut in the header") << QStringLiteral("cut");
    }
    void damagedAccessDatabase()
    {
        QFETCH(QString, file);
        Atlas a;
        const QString mdb = a.ext + QStringLiteral("/dati.mdb");
        if (file == QLatin1String("cut"))
            QVERIFY(writeFile(mdb, readFile(fixturePath(QStringLiteral("testV1997.mdb"))).left(100)));
        else
            QVERIFY(QFile::copy(file, mdb));
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_MsAccess", mdb);
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text, QStringLiteral("Impossibile leggere il file di origine.\r\nVerificare "
                                                            "che il formato di tutti i campi della tabella di "
                                                            "origine sia supportato."));
        QCOMPARE(d.w.step(), 1);
        QVERIFY(d.w.isVisible());
        rec.clear();
        d.choose("rb_MsAccess", fixturePath(QStringLiteral("testV1997.mdb")));
        QCOMPARE(d.w.findChild<QListWidget *>(QStringLiteral("lstTabelle"))->count(), 4);
        QVERIFY(rec.entries().isEmpty());
    }

    // A source named as the working copy is never touched, and nothing is
    // left beside it.
    void sourceNamedCopia_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("radio");
        QTest::newRow("Copia.dbf") << "Copia.dbf"
                                   << "rb_Dbase_3";
        QTest::newRow("Copia.txt") << "Copia.txt"
                                   << "rb_Text";
    }
    void sourceNamedCopia()
    {
        QFETCH(QString, name);
        QFETCH(QString, radio);
        Atlas a;
        const QString path = a.ext + QLatin1Char('/') + name;
        if (name.endsWith(QLatin1String(".txt")))
            QVERIFY(writeNamesFile(path, municipalities(a.home.root())));
        else
            QVERIFY(writeFile(path, latin1Dbase()));
        const auto before = folderSnapshot(a.ext);
        MessageRecorder rec;
        Driver d(a.target());
        d.choose(radio.toLatin1().constData(), path);
        d.press("cmd_avanti");
        d.joinOn(name.endsWith(QLatin1String(".txt")) ? QStringLiteral("CODICE") : QStringLiteral("COD"),
                 QStringLiteral("Codice ISTAT"));
        QVERIFY2(rec.entries().isEmpty(), qPrintable(rec.entries().value(0).text));
        QCOMPARE(d.w.result(), int(QDialog::Accepted));
        QCOMPARE(folderSnapshot(a.ext), before);
        QVERIFY(readDbf(a.comuniDbf())->fieldIndex(QStringLiteral("NOME")) >= 0);
    }

    // A field named as a theme field opens the conflict window; the user
    // renames it there and the column gets that name.
    void conflictWindowRenamesTheField()
    {
        Atlas a;
        QVERIFY(writeFile(a.ext + QStringLiteral("/conf.txt"), "COD_ISTAT;Label\n001001;Agli\xC3\xA8 (TO)\n"));
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Text", a.ext + QStringLiteral("/conf.txt"));
        d.press("cmd_avanti");
        bool shown = false;
        whenModal<JoinConflitti>([&](JoinConflitti *c) {
            shown = true;
            auto *grid = c->findChild<QTableWidget *>(QStringLiteral("grdConflitti"));
            QCOMPARE(grid->rowCount(), 2);
            QVERIFY(c->findChild<QLabel *>(QStringLiteral("lblStato"))->text() != JoinText::kAllResolved);
            grid->item(1, 2)->setText(QStringLiteral("nome_ext"));
            grid->item(0, 2)->setText(QStringLiteral("cod_ext"));
            QCOMPARE(c->findChild<QLabel *>(QStringLiteral("lblStato"))->text(), JoinText::kAllResolved);
            c->findChild<QPushButton *>(QStringLiteral("btnContinua"))->click();
        });
        d.joinOn(QStringLiteral("COD_ISTAT"), QStringLiteral("Codice ISTAT"));
        QVERIFY(shown);
        QCOMPARE(d.w.outcome()->addedFields, QStringList({"cod_ext", "nome_ext"}));
        QCOMPARE(joinedColumn(a.comuniDbf(), QStringLiteral("nome_ext")).value(QStringLiteral("001001")).toString(),
                 QStringLiteral("Agliè (TO)"));
    }

    // A join that fails after any of its steps leaves the theme table, its
    // settings file, the reference database and both folders as they were,
    // and says so with the message of that step.
    void interruptedAtEachStep_data()
    {
        QTest::addColumn<int>("step");
        QTest::addColumn<QString>("message");
        const QString coded = QStringLiteral("  Imposibile eseguire collegamento.");
        const QString linkFailed = QStringLiteral("Si è verificato un errore nel collegamento tra le tabelle. Il "
                                                  "programma ripristinerà il Database di partenza.");
        QTest::newRow("copia") << int(JoinStep::CopySource)
                               << QStringLiteral("Collegamento con tabella esterna fallito.");
        QTest::newRow("lettura") << int(JoinStep::ReadSource)
                                 << QStringLiteral("Collegamento con tabella esterna fallito.");
        QTest::newRow("joinmdb") << int(JoinStep::WriteJoinMdb) << linkFailed;
        QTest::newRow("temp") << int(JoinStep::WriteTemp) << linkFailed;
        QTest::newRow("backup") << int(JoinStep::Backup) << QStringLiteral("3051") + coded;
        QTest::newRow("CAMPIJOIN") << int(JoinStep::CampiJoin) << QStringLiteral("3078") + coded;
        QTest::newRow("tabella") << int(JoinStep::ReplaceTable) << QStringLiteral("3051") + coded;
        QTest::newRow("LISTAJOIN") << int(JoinStep::ListaJoin) << QStringLiteral("3078") + coded;
        QTest::newRow("impostazioni") << int(JoinStep::Settings) << QStringLiteral("3051") + coded;
    }
    void interruptedAtEachStep()
    {
        QFETCH(int, step);
        QFETCH(QString, message);
        Atlas a;
        QVERIFY(writeNamesFile(a.ext + QStringLiteral("/nomi.txt"), municipalities(a.home.root())));
        MessageRecorder rec;
        Driver d(a.target());
        d.choose("rb_Text", a.ext + QStringLiteral("/nomi.txt"));
        d.press("cmd_avanti");
        // As the user presses "Fine": everything that the join may touch.
        const auto italia = folderSnapshot(a.home.italia()), supporto = folderSnapshot(a.home.supporto());
        const auto dati = folderSnapshot(a.home.dati()), ext = folderSnapshot(a.ext);
        QStringList reached;
        setJoinFailureHook([&](JoinStep s) {
            reached << QString::number(int(s));
            return int(s) == step;
        });
        d.joinOn(QStringLiteral("CODICE"), QStringLiteral("Codice ISTAT"));
        setJoinFailureHook({});
        QCOMPARE(reached.last(), QString::number(step));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries().first().text, message);
        QCOMPARE(d.w.step(), 3);
        QCOMPARE(folderSnapshot(a.home.italia()), italia);
        QCOMPARE(folderSnapshot(a.home.supporto()), supporto);
        QCOMPARE(folderSnapshot(a.home.dati()), dati);
        QCOMPARE(folderSnapshot(a.ext), ext);
    }

    // A second join on a joined theme that fails in its bookkeeping takes
    // back only its own rows: the first join stays whole.
    void failedSecondJoinKeepsTheFirst()
    {
        Atlas a;
        const QList<Municipality> all = municipalities(a.home.root());
        QVERIFY(writeNamesFile(a.ext + QStringLiteral("/nomi.txt"), all));
        QVERIFY(writeFile(a.ext + QStringLiteral("/aree.csv"),
                          mervola::test::spreadsheetCsv(all, QLatin1Char(';'), false)));
        {
            MessageRecorder rec;
            Driver first(a.target());
            first.choose("rb_Text", a.ext + QStringLiteral("/nomi.txt"));
            first.press("cmd_avanti");
            first.joinOn(QStringLiteral("CODICE"), QStringLiteral("Codice ISTAT"));
            QVERIFY(rec.entries().isEmpty());
        }
        const ReferenceDb db(a.home);
        const auto rows = [&](const char *sql) {
            auto rs = db.query(QString::fromLatin1(sql));
            return rs ? int(rs->size()) : -1;
        };
        QCOMPARE(rows("Select * from CAMPIJOIN"), 2);
        const QByteArray table = readFile(a.comuniDbf()), ini = readFile(a.comuniIni());
        for (JoinStep failing : {JoinStep::CampiJoin, JoinStep::ListaJoin}) {
            MessageRecorder rec;
            Driver second(a.target());
            second.choose("rb_Text", a.ext + QStringLiteral("/aree.csv"));
            second.press("cmd_avanti");
            setJoinFailureHook([&](JoinStep s) { return s == failing; });
            second.joinOn(QStringLiteral("ISTAT"), QStringLiteral("Codice ISTAT"));
            setJoinFailureHook({});
            QCOMPARE(rec.entries().size(), 1);
            QCOMPARE(rows("Select * from CAMPIJOIN"), 2);
            QCOMPARE(rows("Select * from CAMPIJOIN where CAMPOAGGIUNTO='NOME'"), 1);
            QCOMPARE(rows("Select * from LISTAJOIN where NOMEDB='nomi.txt'"), 1);
            QCOMPARE(rows("Select * from LISTAJOIN"), 1);
            QCOMPARE(readFile(a.comuniDbf()), table);
            QCOMPARE(readFile(a.comuniIni()), ini);
        }
    }
};

QTEST_MAIN(TestJoinWizard)
#include "test_join_wizard.moc"
