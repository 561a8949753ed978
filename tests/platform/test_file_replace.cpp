// Replacing files on a real full disk, a folder in the target's place, and
// the checks that find a cut table or shapefile before it is shown.
#include "platform/FileReplace.h"
#include "platform/Profile.h"
#include "platform/dbf/DbfTable.h"
#include "platform/dbf/TableCheck.h"
#include "support/MountSupport.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace mervola;

namespace
{

QStringList filesIn(const QString &dir)
{
    return QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::Dirs | QDir::NoDotAndDotDot);
}

// A copy of `source` cut to `size` bytes.
bool cutCopy(const QString &source, const QString &dest, qint64 size)
{
    QByteArray bytes = test::readFile(source);
    return !bytes.isEmpty() && test::writeFile(dest, bytes.left(size));
}

} // namespace

class TestFileReplace : public QObject
{
    Q_OBJECT

private slots:
    // On a full disk every kind of replacement fails with the reason, the
    // old file keeps its content and no temporary file is left behind.
    void fullDiskLeavesTheOldFileAndNoTemporary()
    {
        if (!test::ScopedMount::available())
            QSKIP("mounting is not allowed here");
        QTemporaryDir dir;
        const QString disk = dir.filePath(QStringLiteral("disco"));
        test::ScopedMount mount;
        QVERIFY(mount.tmpfs(disk, 512 * 1024));
        const QString ini = disk + QStringLiteral("/comuni.ini");
        const QString table = disk + QStringLiteral("/comuni.dbf");
        QVERIFY(test::writeFile(ini, "[comuni]\nLABEL=*\n"));
        QVERIFY(test::writeFile(table, QByteArray(5000, 't')));
        const QString source = dir.filePath(QStringLiteral("nuova.dbf"));
        QVERIFY(test::writeFile(source, QByteArray(300 * 1024, 'n')));
        QVERIFY(test::fillDisk(disk));

        const Status lines = writeLinesReplacing(ini, {QStringLiteral("[COMUNI]"), QStringLiteral("LABEL=Label")});
        QVERIFY(!lines);
        QCOMPARE(lines.errorMessage(), QStringLiteral("Impossibile scrivere il file %1: il disco è pieno.").arg(ini));
        const Status copy = copyFileReplacing(source, table);
        QVERIFY(!copy);
        QVERIFY(copy.errorMessage().endsWith(QStringLiteral(": il disco è pieno.")));

        QCOMPARE(test::readFile(ini), QByteArray("[comuni]\nLABEL=*\n"));
        QCOMPARE(test::readFile(table), QByteArray(5000, 't'));
        QCOMPARE(filesIn(disk), QStringList({QStringLiteral("comuni.dbf"), QStringLiteral("comuni.ini"),
                                             QStringLiteral("riempitivo.bin")}));

        // With room again the same calls go through.
        QVERIFY(QFile::remove(disk + QStringLiteral("/riempitivo.bin")));
        QVERIFY(writeLinesReplacing(ini, {QStringLiteral("[COMUNI]"), QStringLiteral("LABEL=Label")}));
        QCOMPARE(test::readFile(ini), QByteArray("[COMUNI]\nLABEL=Label\n"));
        QVERIFY(copyFileReplacing(source, table));
        QCOMPARE(test::readFile(table).size(), 300 * 1024);
        QCOMPARE(filesIn(disk), QStringList({QStringLiteral("comuni.dbf"), QStringLiteral("comuni.ini")}));
    }

    void folderInTheTargetsPlaceIsKeptAndNamed()
    {
        QTemporaryDir dir;
        const QString target = dir.filePath(QStringLiteral("regioni.ini"));
        QVERIFY(QDir().mkpath(target));
        const Status st = writeFileReplacing(target, "x", newFilePath(target));
        QVERIFY(!st);
        QCOMPARE(st.errorMessage(),
                 QStringLiteral("Impossibile sostituire il file %1: al suo posto c'è una cartella.").arg(target));
        QVERIFY(QFileInfo(target).isDir());
        QVERIFY(!QFileInfo::exists(dir.filePath(QStringLiteral("regioni.new"))));
    }

    // Cut tables and shapefiles are named with what is wrong; whole ones pass.
    void cutFilesAreFound()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath(QStringLiteral("atlante"));
        QVERIFY(test::copyRealAtlas(home));
        const QString italia = home + QStringLiteral("/italia/");
        QVERIFY(checkShapefile(italia + QStringLiteral("comuni.shp")));
        QVERIFY(checkDbfFile(italia + QStringLiteral("comuni.dbf")));

        const QString dbf = italia + QStringLiteral("comuni.dbf");
        const QByteArray whole = test::readFile(dbf);
        const int headerLength = quint8(whole[8]) | quint8(whole[9]) << 8;
        const int recordLength = quint8(whole[10]) | quint8(whole[11]) << 8;

        // Cut in the middle of record 3,001.
        QVERIFY(cutCopy(dbf, dbf, headerLength + qint64(recordLength) * 3000 + recordLength / 2));
        Status st = checkShapefile(italia + QStringLiteral("comuni.shp"));
        QCOMPARE(st.errorMessage(),
                 QStringLiteral("Il file comuni.dbf è danneggiato: contiene 3.000 record completi su 7.899."));
        QCOMPARE(st.error().code, kDamagedFile);
        auto read = readDbf(dbf);
        QVERIFY(!read);
        QCOMPARE(read.errorMessage(), st.errorMessage());

        // Cut inside the field list, and inside the first 32 bytes.
        for (int size : {headerLength - 40, 20}) {
            QVERIFY(test::writeFile(dbf, whole.left(size)));
            QCOMPARE(checkDbfFile(dbf).errorMessage(),
                     QStringLiteral("Il file comuni.dbf è danneggiato: l'intestazione della tabella è incompleta."));
        }
        QVERIFY(test::writeFile(dbf, whole));

        // The shape files themselves.
        const QString shx = italia + QStringLiteral("comuni.shx");
        const QByteArray index = test::readFile(shx);
        QVERIFY(test::writeFile(shx, index.left(index.size() - 8)));
        QCOMPARE(checkShapefile(italia + QStringLiteral("comuni.shp")).errorMessage(),
                 QStringLiteral("Il file comuni.shx è danneggiato: il file è troncato."));
        QVERIFY(QFile::remove(shx));
        QCOMPARE(checkShapefile(italia + QStringLiteral("comuni.shp")).errorMessage(),
                 QStringLiteral("Manca il file comuni.shx."));
        const QString shp = italia + QStringLiteral("regioni.shp");
        QVERIFY(cutCopy(shp, shp, QFileInfo(shp).size() - 100));
        QCOMPARE(checkShapefile(shp).errorMessage(),
                 QStringLiteral("Il file regioni.shp è danneggiato: il file è troncato."));
    }
};

QTEST_GUILESS_MAIN(TestFileReplace)
#include "test_file_replace.moc"
