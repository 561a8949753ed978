// Projects and region switches in the real main window, offscreen, on
// copies of the real atlas: what a project sets when it opens, why it could
// not be opened, a full disk, and a project far too big.
#include "app/AppState.h"
#include "app/ui/MainWindow.h"
#include "map/ui/MapWidget.h"
#include "platform/Messages.h"
#include "platform/ui/LegendView.h"
#include "support/LargeProjects.h"
#include "support/MountSupport.h"
#include "support/UiSupport.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

using namespace mervola;
using mervola::test::manyThemes;
using mervola::test::peakMemoryMb;
using mervola::test::resetPeakMemory;
using mervola::test::showLoaded;

namespace
{

// Answers the next file dialog with `path`, as a user typing the name
// would, and confirms replacing an existing file.
void answerFileDialog(const QString &path)
{
    auto *timer = new QTimer;
    timer->setInterval(20);
    auto accepted = std::make_shared<int>(-1);
    QObject::connect(timer, &QTimer::timeout, [timer, path, accepted] {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *dialog = qobject_cast<QFileDialog *>(modal); dialog && *accepted < 0) {
            // Typed into the name box, as a user would.
            dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path);
            *accepted = 0;
            QMetaObject::invokeMethod(dialog, "accept");
        } else if (auto *box = qobject_cast<QMessageBox *>(modal); box && *accepted >= 0) {
            if (QAbstractButton *yes = box->button(QMessageBox::Yes))
                yes->click();
        }
        if (*accepted >= 0 && ++*accepted > 25) {
            timer->stop();
            timer->deleteLater();
        }
    });
    timer->start();
}

// Picks a region from the box's list with the mouse.
void chooseRegion(MainWindow &w, const QString &text)
{
    auto *box = w.findChild<QComboBox *>(QStringLiteral("cboRegioni"));
    box->showPopup();
    QAbstractItemView *view = box->view();
    const QModelIndex index = view->model()->index(box->findText(text), 0);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}

QString regionShown(MainWindow &w)
{
    return w.findChild<QComboBox *>(QStringLiteral("cboRegioni"))->currentText();
}

QStringList layerNames(MainWindow &w)
{
    QStringList names;
    for (const auto &layer : w.mapWidget()->model().layers())
        names << layer.name;
    return names;
}

QStringList filesUnder(const QString &dir, const QStringList &filters = {})
{
    QStringList out;
    QDirIterator it(dir, filters, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        out << it.next();
    out.sort();
    return out;
}

} // namespace

class TestProjectFaults : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

private slots:
    void init()
    {
        appState().reset();
        m_home = m_dir.filePath(QString::fromLatin1(QTest::currentTestFunction()));
        QVERIFY(test::copyRealAtlas(m_home));
    }

    // Opening a project brings back its region, its mountain-community
    // table and its name; a project that cannot be opened says why and
    // leaves no trace of the previous name.
    void openingSetsRegionTableAndCaption()
    {
        const QString puglia = m_dir.filePath(QStringLiteral("puglia.rlx"));
        {
            MessageRecorder rec;
            MainWindow w{AtlasHome(m_home), appState()};
            QVERIFY(showLoaded(w));
            chooseRegion(w, QStringLiteral("PUGLIA"));
            QTRY_VERIFY(w.mapWidget()->model().find(QStringLiteral("cmont_16")));
            answerFileDialog(puglia);
            QVERIFY(w.saveProjectInteractive());
            QVERIFY(rec.entries().isEmpty());
        }
        QVERIFY(test::readFile(puglia).contains("DBFCOMMONT=cmont_16^\n"));

        appState().reset();
        MessageRecorder rec;
        MainWindow w{AtlasHome(m_home), appState()};
        QVERIFY(showLoaded(w));
        answerFileDialog(puglia);
        w.dispatch(QStringLiteral("apri"));
        QVERIFY(rec.entries().isEmpty());
        QCOMPARE(w.windowTitle(), QStringLiteral("Mervola - puglia"));
        QCOMPARE(regionShown(w), QStringLiteral("PUGLIA"));
        QVERIFY(w.mapWidget()->model().find(QStringLiteral("comu_16")));
        const QString again = m_dir.filePath(QStringLiteral("puglia-2.rlx"));
        answerFileDialog(again);
        QVERIFY(w.saveProjectInteractive());
        QVERIFY(test::readFile(again).contains("DBFCOMMONT=cmont_16^\n"));

        // A project whose shapefile is gone.
        QString text = QString::fromUtf8(test::readFile(puglia));
        text.replace(QStringLiteral("BASE=comu_16.shp^"), QStringLiteral("BASE=sparito.shp^"));
        const QString broken = m_dir.filePath(QStringLiteral("rotto.rlx"));
        QVERIFY(test::writeFile(broken, text.toUtf8()));
        answerFileDialog(broken);
        w.dispatch(QStringLiteral("apri"));
        QCOMPARE(rec.entries().size(), 1);
        QCOMPARE(rec.entries()[0].style, MsgStyle::Critical);
        QCOMPARE(rec.entries()[0].text,
                 QStringLiteral("Il progetto non può essere aperto.\nSarà ripristinato il progetto iniziale."));
        QCOMPARE(rec.entries()[0].details, QStringLiteral("Shapefile non trovato: sparito.shp"));
        QCOMPARE(w.windowTitle(), QStringLiteral("Mervola"));
        QCOMPARE(regionShown(w), QStringLiteral("<Tutta l'Italia>"));
        QCOMPARE(layerNames(w),
                 QStringList({QStringLiteral("citta"), QStringLiteral("province"), QStringLiteral("commont"),
                              QStringLiteral("comuni"), QStringLiteral("regioni")}));
        QCOMPARE(appState().communityTable, QStringLiteral("commont"));
    }

    // On a full disk a region switch and a save fail whole: the box, the map
    // and the files on disk stay as they were, with no temporary file left.
    void fullDiskChangesNothing()
    {
        if (!test::ScopedMount::available())
            QSKIP("mounting is not allowed here");
        const QString disk = m_dir.filePath(QStringLiteral("disco"));
        test::ScopedMount mount;
        QVERIFY(mount.tmpfs(disk, test::folderSize(m_home) + 8 * 1024 * 1024));
        const QString home = disk + QStringLiteral("/atlante");
        QVERIFY(test::copyRealAtlas(home));
        MessageRecorder rec;
        MainWindow w{AtlasHome(home), appState()};
        QVERIFY(showLoaded(w));
        const QString project = disk + QStringLiteral("/lavoro.rlx");
        answerFileDialog(project);
        QVERIFY(w.saveProjectInteractive());
        const QByteArray saved = test::readFile(project);
        const QStringList layers = layerNames(w);
        QVERIFY(test::fillDisk(disk));
        const QMap<QString, QByteArray> before = [&] {
            QMap<QString, QByteArray> m;
            for (const QString &f : filesUnder(home + QStringLiteral("/supporto")))
                m.insert(f, test::readFile(f));
            return m;
        }();

        chooseRegion(w, QStringLiteral("PIEMONTE"));
        QTRY_COMPARE(rec.entries().size(), 1);
        QVERIFY2(rec.entries()[0].text.endsWith(QStringLiteral(": il disco è pieno.")),
                 qPrintable(rec.entries()[0].text));
        QCOMPARE(regionShown(w), QStringLiteral("<Tutta l'Italia>"));
        QCOMPARE(layerNames(w), layers);
        QCOMPARE(appState().regionCode, QStringLiteral("00"));

        answerFileDialog(project);
        QVERIFY(!w.saveProjectInteractive());
        QCOMPARE(rec.entries().size(), 2);
        QCOMPARE(rec.entries()[1].text,
                 QStringLiteral("Impossibile scrivere il file %1: il disco è pieno.").arg(project));
        QCOMPARE(test::readFile(project), saved);
        QCOMPARE(w.windowTitle(), QStringLiteral("Mervola - lavoro"));

        QVERIFY(filesUnder(disk, {QStringLiteral("*.new")}).isEmpty());
        for (auto it = before.begin(); it != before.end(); ++it)
            QCOMPARE(test::readFile(it.key()), it.value());
    }

    // A project of 10,000 themes shows its progress and can be cancelled;
    // the cancelled opening leaves no settings file behind.
    void hugeProjectShowsProgressAndCanBeCancelled()
    {
        MessageRecorder rec;
        MainWindow w{AtlasHome(m_home), appState()};
        QVERIFY(showLoaded(w));
        const QString huge = m_dir.filePath(QStringLiteral("enorme.rlx"));
        QVERIFY(test::writeFile(huge, manyThemes(m_home, 10000)));
        const QStringList supporto = filesUnder(m_home + QStringLiteral("/supporto"));

        QElapsedTimer clock;
        qint64 shownAfter = -1;
        auto *watcher = new QTimer(&w);
        watcher->setInterval(20);
        connect(watcher, &QTimer::timeout, [&] {
            auto *progress = w.findChild<QProgressDialog *>(QStringLiteral("frmProgresso"));
            if (!progress || !progress->isVisible() || progress->value() < 500)
                return;
            watcher->stop();
            shownAfter = clock.elapsed();
            QCOMPARE(progress->labelText(), QStringLiteral("Apertura del progetto in corso..."));
            auto *cancel = progress->findChild<QPushButton *>();
            QCOMPARE(cancel->text(), QStringLiteral("Annulla"));
            QTest::mouseClick(cancel, Qt::LeftButton);
        });
        clock.start();
        watcher->start();
        answerFileDialog(huge);
        w.dispatch(QStringLiteral("apri"));
        QVERIFY2(shownAfter >= 0, "the progress window never appeared");
        QVERIFY(rec.entries().isEmpty());
        QCOMPARE(filesUnder(m_home + QStringLiteral("/supporto")), supporto);
        QCOMPARE(w.windowTitle(), QStringLiteral("Mervola"));
        QCOMPARE(layerNames(w),
                 QStringList({QStringLiteral("citta"), QStringLiteral("province"), QStringLiteral("commont"),
                              QStringLiteral("comuni"), QStringLiteral("regioni")}));
    }

    // Opened to the end, a project of 2,000 themes and one of 50 MB stay
    // within the memory a desktop user accepts. A theme used to cost 86 KB
    // of swatches, which 2,000 themes turn into 170 MB. bench_project_memory
    // prints the times and the figures of 10,000 themes.
    void hugeProjectsOpenWithinReasonableMemory()
    {
        MessageRecorder rec;
        MainWindow w{AtlasHome(m_home), appState()};
        QVERIFY(showLoaded(w));
        const QString many = m_dir.filePath(QStringLiteral("duemila.rlx"));
        QVERIFY(test::writeFile(many, manyThemes(m_home, 2000)));
        resetPeakMemory();
        const qint64 before = peakMemoryMb();
        QVERIFY(w.openProject(many));
        const qint64 manyMb = peakMemoryMb() - before;
        QCOMPARE(w.mapWidget()->model().layerCount(), 2000);
        qInfo("2.000 temi: +%lld MB", manyMb);

        // One theme whose classification line alone is 50 MB.
        QByteArray big = test::readFile(m_home + QStringLiteral("/supporto/default.rlx"));
        big.replace("CLASSIFICAZIONE=0", "CLASSIFICAZIONE=" + QByteArray(50 * 1024 * 1024, '7'));
        const QString large = m_dir.filePath(QStringLiteral("cinquanta.rlx"));
        QVERIFY(test::writeFile(large, big));
        resetPeakMemory();
        const qint64 base = peakMemoryMb();
        QVERIFY(w.openProject(large));
        const qint64 largeMb = peakMemoryMb() - base;
        qInfo("50 MB: +%lld MB", largeMb);
        QVERIFY(rec.entries().isEmpty());
        QCOMPARE(w.windowTitle(), QStringLiteral("Mervola - cinquanta"));
        // The 2,000 settings files of the first project went with it.
        QVERIFY(QDir(m_home + QStringLiteral("/supporto")).entryList({QStringLiteral("tema_*")}).isEmpty());
#ifndef __SANITIZE_ADDRESS__
        // The sanitizer keeps freed memory in quarantine and pads every
        // block: its figures are printed, the program's own are judged.
        QVERIFY2(manyMb < 60 && largeMb < 100, qPrintable(QStringLiteral("%1 MB, %2 MB").arg(manyMb).arg(largeMb)));
#endif
    }
};

QTEST_MAIN(TestProjectFaults)
#include "test_project_faults.moc"
