#include "project/JoinTable.h"

#include "platform/dbf/DbfGdal.h"
#include "project/JoinExecute.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace mervola
{

namespace
{

Error tableError(int code)
{
    return Error{QString(), code};
}

// Normalised join key: numbers by value, text trimmed and upper-cased (the
// engine compares text without regard to case). Null keys match nothing.
QString keyOf(const QVariant &v)
{
    if (v.isNull())
        return {};
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double:
        return QStringLiteral("#") + QString::number(v.toDouble(), 'g', 17);
    default:
        break;
    }
    const QString s = v.toString().trimmed().toUpper();
    return s.isEmpty() ? QString() : QStringLiteral("$") + s;
}

int integerDigits(double v)
{
    return int(QString::number(std::floor(std::fabs(v)), 'f', 0).size());
}

// A text column: every value in the code page, the width in its bytes.
void fitText(DbfField &f, std::vector<std::vector<QVariant>> &rows, int c, bool utf8, bool latin1)
{
    int width = std::clamp(f.width, 1, kDbfMaxTextWidth);
    for (auto &row : rows) {
        QVariant &cell = row[size_t(c)];
        if (cell.isNull())
            continue;
        QString s = cell.toString();
        bool changed = cell.typeId() != QMetaType::QString;
        if (latin1)
            for (QChar &ch : s)
                if (ch.unicode() > 0xFF) {
                    ch = QLatin1Char('?');
                    changed = true;
                }
        int bytes = utf8 ? int(s.toUtf8().size()) : int(s.size());
        while (bytes > kDbfMaxTextWidth) {
            s.chop(s.size() >= 2 && s.at(s.size() - 1).isLowSurrogate() ? 2 : 1);
            bytes = utf8 ? int(s.toUtf8().size()) : int(s.size());
            changed = true;
        }
        if (changed)
            cell = s;
        width = std::max(width, bytes);
    }
    f.width = width;
}

// A numeric column wider than dBase allows: as many decimals as fit.
void fitNumber(DbfField &f, const std::vector<std::vector<QVariant>> &rows, int c)
{
    if (f.width <= kDbfMaxNumericWidth && (f.decimals == 0 || f.decimals <= f.width - 2))
        return;
    int digits = 1;
    bool negative = false;
    for (const auto &row : rows) {
        const QVariant &cell = row[size_t(c)];
        if (cell.isNull())
            continue;
        const double v = cell.toDouble();
        if (!std::isfinite(v))
            continue;
        digits = std::max(digits, integerDigits(v));
        negative = negative || v < 0;
    }
    const int room = kDbfMaxNumericWidth - digits - (negative ? 1 : 0);
    f.decimals = std::clamp(std::min(f.decimals, room - 1), 0, 15);
    f.width = kDbfMaxNumericWidth;
}

} // namespace

Result<DbfTable> selectColumns(const SourceTable &source, const QList<StagedField> &rows)
{
    DbfTable out;
    out.encoding = source.table.encoding;
    QList<int> columns;
    for (const StagedField &r : rows) {
        if (!r.incluso)
            continue;
        const int c = source.table.fieldIndex(r.nomeCampo.left(kDbfMaxFieldNameLength));
        const int exact = source.table.fieldIndex(r.nomeCampo);
        const int col = exact >= 0 ? exact : c;
        if (col < 0)
            return tableError(JoinError::SourceFailed);
        DbfField f = source.table.fields[col];
        f.name = r.outputName().left(kDbfMaxFieldNameLength);
        if (out.fieldIndex(f.name) >= 0)
            return tableError(JoinError::FieldExists);
        out.fields << f;
        columns << col;
    }
    out.rows.reserve(source.table.rows.size());
    for (const auto &src : source.table.rows) {
        std::vector<QVariant> row;
        row.reserve(std::size_t(columns.size()));
        for (int c : columns)
            row.push_back(src[std::size_t(c)]);
        out.rows.push_back(std::move(row));
    }
    return out;
}

int externalKeyColumn(const DbfTable &ext, const QString &field, const QList<StagedField> &rows)
{
    for (const StagedField &r : rows)
        if (r.incluso && (r.nomeCampo.compare(field, Qt::CaseInsensitive) == 0 ||
                          r.nomeCampo.left(kDbfMaxFieldNameLength)
                                  .compare(field.left(kDbfMaxFieldNameLength), Qt::CaseInsensitive) == 0))
            return ext.fieldIndex(r.outputName().left(kDbfMaxFieldNameLength));
    return ext.fieldIndex(field.left(kDbfMaxFieldNameLength));
}

Result<DbfTable> leftJoin(const DbfTable &theme, int themeKey, const DbfTable &ext, int extKey)
{
    DbfTable out;
    out.encoding = theme.encoding;
    out.fields = theme.fields;
    for (const DbfField &f : ext.fields) {
        if (out.fieldIndex(f.name) >= 0)
            return tableError(JoinError::FieldExists);
        out.fields << f;
    }
    QHash<QString, QList<int>> index;
    index.reserve(qsizetype(ext.rows.size()));
    for (size_t i = 0; i < ext.rows.size(); ++i)
        if (const QString k = keyOf(ext.rows[i][std::size_t(extKey)]); !k.isEmpty())
            index[k] << int(i);
    const std::vector<QVariant> nulls(std::size_t(ext.columnCount()));
    out.rows.reserve(theme.rows.size());
    for (const auto &row : theme.rows) {
        const auto found = index.constFind(keyOf(row[std::size_t(themeKey)]));
        const int n = found == index.constEnd() ? 1 : int(found->size());
        for (int m = 0; m < n; ++m) {
            std::vector<QVariant> joined;
            joined.reserve(row.size() + nulls.size());
            joined.insert(joined.end(), row.begin(), row.end());
            const auto &add = found == index.constEnd() ? nulls : ext.rows[std::size_t((*found)[m])];
            joined.insert(joined.end(), add.begin(), add.end());
            out.rows.push_back(std::move(joined));
        }
    }
    return out;
}

void fitColumns(DbfTable &table, const QString &encoding)
{
    const bool utf8 = dbfdetail::isUtf8Encoding(encoding);
    const bool latin1 = dbfdetail::isLatin1Encoding(encoding);
    for (int c = 0; c < table.columnCount(); ++c) {
        DbfField &f = table.fields[c];
        if (f.type == DbfType::Text)
            fitText(f, table.rows, c, utf8, latin1);
        else if (f.type == DbfType::Numeric || f.type == DbfType::Float)
            fitNumber(f, table.rows, c);
    }
}

} // namespace mervola
