// mervola-cli render draws the default project or a given project file,
// with the project's classes, without writing into the atlas home.
#include "support/TestSupport.h"

#include <QDirIterator>
#include <QImage>
#include <QtTest>

using namespace mervola;

namespace {

int countColour(const QImage &img, QRgb colour)
{
    int n = 0;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            n += (img.pixel(x, y) & 0xFFFFFF) == (colour & 0xFFFFFF);
    return n;
}

QStringList filesWithTimes(const QString &dir)
{
    QStringList out;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        out << it.filePath() + QString::number(it.fileInfo().lastModified().toMSecsSinceEpoch());
    }
    out.sort();
    return out;
}

}  // namespace

class TestRenderCli : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_home;

    int render(const QStringList &extra, const QString &out, QString *err = nullptr)
    {
        return test::runProgram(QStringLiteral(MERVOLA_CLI),
                                QStringList{QStringLiteral("render"), QStringLiteral("--home"), m_home,
                                            QStringLiteral("--size"), QStringLiteral("400x300"),
                                            QStringLiteral("--out"), out} + extra,
                                nullptr, err);
    }

private slots:
    void initTestCase()
    {
        m_home = m_dir.path() + QStringLiteral("/home");
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("build-atlas"), QStringLiteral("--demo"), QStringLiteral("--home"), m_home}),
                 0);
    }

    void projectClassesAreDrawn()
    {
        const QString plain = m_dir.path() + QStringLiteral("/plain.png");
        const auto before = filesWithTimes(m_home);
        QCOMPARE(render({}, plain), 0);
        QCOMPARE(filesWithTimes(m_home), before);
        const QImage a(plain);
        QCOMPARE(a.size(), QSize(400, 300));
        const QRgb red = qRgb(255, 0, 0);
        QCOMPARE(countColour(a, red), 0);

        // The default project with every municipality in one red class.
        QString text = QString::fromUtf8(test::readFile(m_home + QStringLiteral("/supporto/default.rlx")));
        const int at = text.indexOf(QStringLiteral("[comuni]"));
        QVERIFY(at >= 0);
        const int tipo = text.indexOf(QStringLiteral("TIPOCLASSIFICAZIONE=0"), at);
        const int campo = text.indexOf(QStringLiteral("CAMPO="), at);
        const int cls = text.indexOf(QStringLiteral("\nCLASSIFICAZIONE=0"), at) + 1;
        QVERIFY(tipo > 0 && campo > tipo && cls > campo);
        text.replace(cls, QStringLiteral("CLASSIFICAZIONE=0").size(),
                     QStringLiteral("CLASSIFICAZIONE=0^-1000000000 - 1000000000^0^255^tutti^0^1^|"));
        const int campoEnd = text.indexOf(QLatin1Char('\n'), campo);
        text.replace(campo, campoEnd - campo, QStringLiteral("CAMPO=_01001^1^0^0^"));
        text.replace(tipo, QStringLiteral("TIPOCLASSIFICAZIONE=0").size(), QStringLiteral("TIPOCLASSIFICAZIONE=QUANTILE"));
        const QString project = m_dir.path() + QStringLiteral("/rosso.rlx");
        QVERIFY(test::writeFile(project, text.toUtf8()));
        const QString classified = m_dir.path() + QStringLiteral("/rosso.png");
        QString err;
        QVERIFY2(render({QStringLiteral("--project"), project}, classified, &err) == 0, qPrintable(err));
        QVERIFY(countColour(QImage(classified), red) > 100);
    }

    void badInputIsRefusedInItalian()
    {
        QString err;
        QVERIFY(render({QStringLiteral("--project"), m_dir.path() + QStringLiteral("/manca.rlx")},
                       m_dir.path() + QStringLiteral("/x.png"), &err) != 0);
        QVERIFY(err.contains(QStringLiteral("Impossibile")));
        QVERIFY(render({}, m_dir.path() + QStringLiteral("/x.jpg"), &err) != 0);
        QVERIFY(!QFile::exists(m_dir.path() + QStringLiteral("/x.jpg")));

        // A text file is no project, even one holding a project's lines.
        const QString text = m_dir.path() + QStringLiteral("/progetto.txt");
        QVERIFY(QFile::copy(m_home + QStringLiteral("/supporto/default.rlx"), text));
        const QString out = m_dir.path() + QStringLiteral("/t.png");
        QCOMPARE(render({QStringLiteral("--project"), text}, out, &err), 2);
        QCOMPARE(err, QStringLiteral("mervola-cli: L'estensione del file di progetto non è corretta.\n"));
        QVERIFY(!QFile::exists(out));
    }

    // A table cut short is named, never drawn in part.
    void damagedTableIsRefused()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("italia"));
        QVERIFY(test::copyRealAtlas(home));
        const QString dbf = home + QStringLiteral("/italia/comuni.dbf");
        const QByteArray whole = test::readFile(dbf);
        QVERIFY(test::writeFile(dbf, whole.left(whole.size() / 2)));
        // Whole records left: (half the file - header) / record length.
        const auto le16 = [&](int at) { return int(uchar(whole[at])) | int(uchar(whole[at + 1])) << 8; };
        const int complete = int((whole.size() / 2 - le16(8)) / le16(10));
        const QString out = dir.filePath(QStringLiteral("mappa.png"));
        QString err;
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("render"), QStringLiteral("--home"), home, QStringLiteral("--out"), out},
                                  nullptr, &err),
                 2);
        QCOMPARE(err, QStringLiteral("mervola-cli: Il file comuni.dbf è danneggiato: contiene %1 record completi su 7.899.\n")
                          .arg(QLocale(QLocale::Italian).toString(complete)));
        QVERIFY(!QFile::exists(out));
        QCOMPARE(test::runProgram(QStringLiteral(MERVOLA_CLI),
                                  {QStringLiteral("sql"), QStringLiteral("--folder"), home + QStringLiteral("/italia"),
                                   QStringLiteral("SELECT COUNT(*) FROM comuni")},
                                  nullptr, &err),
                 2);
        QVERIFY2(err.contains(QStringLiteral("Il file comuni.dbf è danneggiato")), qPrintable(err));
    }
};

QTEST_GUILESS_MAIN(TestRenderCli)
#include "test_render_cli.moc"
