// The installed program: `cmake --install` of this build tree into a fresh
// prefix puts every file where a desktop expects it, and the installed
// mervola, started by a new user with no atlas home, prepares the atlas of
// all Italy from the source data installed beside it.
#include "support/TestSupport.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

using namespace mervola;

class TestInstall : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_prefix;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_prefix = m_dir.filePath(QStringLiteral("usr"));
        const QString cmake = QStandardPaths::findExecutable(QStringLiteral("cmake"));
        QVERIFY(!cmake.isEmpty());
        QString out, err;
        const int rc = test::runProgram(
            cmake,
            {QStringLiteral("--install"), QStringLiteral(MERVOLA_BINARY_DIR), QStringLiteral("--prefix"), m_prefix},
            &out, &err, 600000);
        QVERIFY2(rc == 0, qPrintable(out + err));
    }

    void filesGoUnderTheUsualPrefixes()
    {
        for (const char *path :
             {"bin/mervola", "bin/mervola-cli", "lib/mervola/mervola-access", "share/applications/mervola.desktop",
              "share/icons/hicolor/scalable/apps/mervola.svg", "share/mervola/mervola.html",
              "share/mervola/sources/README.md", "share/mervola/sources/comuni_attributi.csv",
              "share/mervola/sources/capoluoghi.csv", "share/mervola/sources/boundaries/limits_IT_regions.topo.json",
              "share/doc/mervola/README.md"})
            QVERIFY2(QFileInfo::exists(m_prefix + QLatin1Char('/') + QLatin1String(path)), path);
        QVERIFY(QFileInfo(m_prefix + QStringLiteral("/bin/mervola")).isExecutable());
        QVERIFY(QFileInfo(m_prefix + QStringLiteral("/lib/mervola/mervola-access")).isExecutable());

        const QString desktop =
            QString::fromUtf8(test::readFile(m_prefix + QStringLiteral("/share/applications/mervola.desktop")));
        for (const char *line :
             {"Name=Mervola\n", "Comment=Atlante statistico delle comunità montane e dei comuni italiani\n",
              "Exec=mervola\n", "Icon=mervola\n", "Categories=Education;Science;Geography;\n"})
            QVERIFY2(desktop.contains(QString::fromUtf8(line)), line);

        // The help page describes the atlas the installed sources give.
        const QString help =
            QString::fromUtf8(test::readFile(m_prefix + QStringLiteral("/share/mervola/mervola.html")));
        QVERIFY2(help.contains(QStringLiteral("Miagliano")), qPrintable(help.left(400)));
    }

    void installedProgramStartsOnAllItalyForANewUser()
    {
        QString out;
        QCOMPARE(test::runProgram(m_prefix + QStringLiteral("/bin/mervola-cli"), {QStringLiteral("--version")}, &out),
                 0);
        QCOMPARE(out, QStringLiteral("mervola-cli " MERVOLA_TEST_VERSION "\n"));

        // A new user: an empty home folder, no atlas, no hint where the
        // sources are; the atlas goes to ~/.local/share/mervola.
        const QString user = m_dir.filePath(QStringLiteral("statistico"));
        QVERIFY(QDir().mkpath(user));
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"MERVOLA_SOURCES", "MERVOLA_HOME", "XDG_DATA_HOME"})
            env.remove(QString::fromLatin1(name));
        env.insert(QStringLiteral("HOME"), user);
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("MERVOLA_NONINTERACTIVE"), QStringLiteral("1"));
        QProcess app;
        app.setProcessEnvironment(env);
        app.setWorkingDirectory(user);
        app.start(m_prefix + QStringLiteral("/bin/mervola"), {QStringLiteral("--quit-after-start")});
        QVERIFY(app.waitForFinished(600000));
        const QString err = QString::fromUtf8(app.readAllStandardError());
        QVERIFY2(app.exitCode() == 0, qPrintable(err));
        const QString home = user + QStringLiteral("/.local/share/mervola");
        QVERIFY2(err.contains(QStringLiteral("Lettura dei dati di origine da %1/share/mervola/sources").arg(m_prefix)),
                 qPrintable(err));
        QVERIFY2(err.contains(QStringLiteral("Atlante creato in %1: 7899 comuni").arg(home)), qPrintable(err));
        QVERIFY2(err.contains(QStringLiteral("Mappa disegnata")), qPrintable(err));
    }
};

QTEST_GUILESS_MAIN(TestInstall)
#include "test_install.moc"
