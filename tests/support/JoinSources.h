#pragma once
// The files a statistician joins to the municipalities, made from the real
// atlas' own comuni table: a UTF-8 text file of every name, a spreadsheet
// CSV in its three separators, a dBase written by GDAL (ogr2ogr) and a
// hand-written Latin-1 dBase. Header-only: the tests that use it link the
// dBase reader.

#include "platform/dbf/DbfTable.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QStringList>

namespace mervola::test
{

// Every file under a folder with its bytes, keyed by the path inside it.
inline QMap<QString, QByteArray> folderSnapshot(const QString &folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files.insert(path.mid(folder.size()), readFile(path));
    }
    return files;
}

struct Municipality {
    QString code; // COD_ISTAT, six digits with leading zeros
    QString name; // Label
    double area = 0;
    qlonglong population = 0;
};

inline QList<Municipality> municipalities(const QString &home)
{
    QList<Municipality> out;
    auto t = readDbf(home + QStringLiteral("/italia/comuni.dbf"));
    if (!t)
        return out;
    const int code = t->fieldIndex(QStringLiteral("COD_ISTAT")), name = t->fieldIndex(QStringLiteral("Label"));
    const int area = t->fieldIndex(QStringLiteral("_01001")), pop = t->fieldIndex(QStringLiteral("_02010"));
    for (const auto &r : t->rows)
        out.append({r[size_t(code)].toString(), r[size_t(name)].toString(), r[size_t(area)].toDouble(),
                    r[size_t(pop)].toLongLong()});
    return out;
}

// "CODICE;NOME" then one line per municipality, UTF-8, LF.
inline bool writeNamesFile(const QString &path, const QList<Municipality> &rows)
{
    QByteArray out = "CODICE;NOME\n";
    for (const Municipality &m : rows)
        out += (m.code + QLatin1Char(';') + m.name + QLatin1Char('\n')).toUtf8();
    return writeFile(path, out);
}

// As a spreadsheet saves it: CRLF, the separator given, an optional BOM,
// codes with leading zeros, areas with a decimal comma (quoted when the
// separator is the comma, as spreadsheets do), a name holding the separator.
inline QByteArray spreadsheetCsv(const QList<Municipality> &rows, QChar sep, bool bom)
{
    const auto cell = [&](const QString &v) {
        return v.contains(sep) || v.contains(QLatin1Char('"'))
                   ? QLatin1Char('"') + QString(v).replace(QStringLiteral("\""), QStringLiteral("\"\"")) +
                         QLatin1Char('"')
                   : v;
    };
    QString text = QStringLiteral("ISTAT") + sep + QStringLiteral("Comune") + sep + QStringLiteral("Superficie") + sep +
                   QStringLiteral("Abitanti\r\n");
    for (const Municipality &m : rows)
        text += cell(m.code) + sep + cell(m.name) + sep +
                cell(QString::number(m.area, 'f', 2).replace(QLatin1Char('.'), QLatin1Char(','))) + sep +
                QString::number(m.population) + QStringLiteral("\r\n");
    return (bom ? QByteArray("\xEF\xBB\xBF") : QByteArray()) + text.toUtf8();
}

// A dBase written by ogr2ogr from a CSV (codes as text, areas as reals:
// GDAL declares them N(24,15)). Empty when ogr2ogr fails.
inline QString gdalDbase(const QString &folder, const QList<Municipality> &rows)
{
    QDir().mkpath(folder);
    QByteArray csv = "CODICE,AREA\n";
    for (const Municipality &m : rows)
        csv += (m.code + QLatin1Char(',') + QString::number(m.area, 'f', 4) + QLatin1Char('\n')).toUtf8();
    if (!writeFile(folder + QStringLiteral("/gdalsrc.csv"), csv) ||
        !writeFile(folder + QStringLiteral("/gdalsrc.csvt"), "\"String\",\"Real\"\n"))
        return {};
    const QString out = folder + QStringLiteral("/gdal.dbf");
    if (runProgram(QStringLiteral("ogr2ogr"), {QStringLiteral("-f"), QStringLiteral("ESRI Shapefile"), out,
                                               folder + QStringLiteral("/gdalsrc.csv")}) != 0)
        return {};
    QFile::remove(folder + QStringLiteral("/gdalsrc.csv"));
    QFile::remove(folder + QStringLiteral("/gdalsrc.csvt"));
    return out;
}

// A dBase III table without code page, its text in Latin-1: COD C(6) and
// NOME C(5), the first record "001001", "Agliè" (the "è" the last byte).
inline QByteArray latin1Dbase()
{
    const QList<QPair<QByteArray, QByteArray>> records = {{"001001", "Agli\xE8"}, {"001002", "Airas"}};
    QByteArray h(32, '\0');
    h[0] = 0x03;
    h[1] = 124;
    h[2] = 1;
    h[3] = 1;
    const int count = int(records.size()), headerLength = 32 + 2 * 32 + 1, recordLength = 1 + 6 + 5;
    h[4] = char(count);
    h[8] = char(headerLength & 0xFF);
    h[9] = char(headerLength >> 8);
    h[10] = char(recordLength);
    const auto field = [](const char *name, int width) {
        QByteArray d(32, '\0');
        d.replace(0, int(qstrlen(name)), name);
        d[11] = 'C';
        d[16] = char(width);
        return d;
    };
    QByteArray out = h + field("COD", 6) + field("NOME", 5) + '\r';
    for (const auto &[cod, nome] : records)
        out += ' ' + cod + nome;
    return out + '\x1A';
}

} // namespace mervola::test
