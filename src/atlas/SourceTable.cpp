#include "atlas/SourceTable.h"

#include <QFile>

namespace mervola::atlas {

int SourceTable::column(const QString &name) const
{
    for (int i = 0; i < header.size(); ++i)
        if (header[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

QHash<QString, QString> SourceTable::record(size_t row) const
{
    QHash<QString, QString> out;
    const QStringList &r = rows.at(row);
    for (int i = 0; i < header.size(); ++i)
        out.insert(header[i], r.value(i));
    return out;
}

SourceTable parseCsv(const QString &text, QChar separator)
{
    std::vector<QStringList> lines;
    QStringList fields;
    QString field;
    bool quoted = false;
    bool any = false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (quoted) {
            if (c == QLatin1Char('"')) {
                if (i + 1 < text.size() && text[i + 1] == QLatin1Char('"')) {
                    field += c;
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                field += c;
            }
        } else if (c == QLatin1Char('"')) {
            quoted = true;
            any = true;
        } else if (c == separator) {
            fields << field;
            field.clear();
            any = true;
        } else if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            if (c == QLatin1Char('\r') && i + 1 < text.size() && text[i + 1] == QLatin1Char('\n'))
                ++i;
            if (any || !field.isEmpty()) {
                fields << field;
                lines.push_back(fields);
            }
            fields.clear();
            field.clear();
            any = false;
        } else {
            field += c;
            any = true;
        }
    }
    if (any || !field.isEmpty()) {
        fields << field;
        lines.push_back(fields);
    }

    SourceTable table;
    if (lines.empty())
        return table;
    table.header = lines.front();
    for (QString &h : table.header)
        h = h.trimmed();
    for (size_t i = 1; i < lines.size(); ++i) {
        QStringList row = lines[i];
        while (row.size() < table.header.size())
            row << QString();
        table.rows.push_back(row);
    }
    return table;
}

Result<SourceTable> readCsv(const QString &path, QChar separator)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Result<SourceTable>::fail(QStringLiteral("Impossibile leggere il file %1.").arg(path));
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes.remove(0, 3);
    return parseCsv(QString::fromUtf8(bytes), separator);
}

}  // namespace mervola::atlas
