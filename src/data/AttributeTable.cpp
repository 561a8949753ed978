#include "data/AttributeTable.h"
#include "platform/FieldNames.h"

#include "data/AttributeTableTexts.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfValues.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace mervola {

namespace {


bool isDummy(const QString &field) { return isPlaceholderField(field); }

QString valueText(const QVariant &v)
{
    if (v.isNull())
        return QString();
    if (v.typeId() == QMetaType::Double)
        return dbfvalues::formatNumber(v.toDouble());
    return v.toString();
}

}  // namespace

bool isBaseTable(const QString &table)
{
    const QString t = table.toUpper();
    return t == QLatin1String("COMMONT") || t.startsWith(QLatin1String("CMONT_")) || t == QLatin1String("COMUNI")
           || t.startsWith(QLatin1String("COMU_"));
}

AttributeTable::AttributeTable(AttributeTable &&) noexcept = default;
AttributeTable &AttributeTable::operator=(AttributeTable &&) noexcept = default;
AttributeTable::~AttributeTable() = default;

Result<AttributeTable> AttributeTable::open(const QString &folder, const QString &table)
{
    AttributeTable t;
    t.m_folder = std::make_unique<DbfFolder>(folder);
    auto dbf = t.m_folder->table(table);
    if (!dbf)
        return dbf.error();
    t.m_table = table.toLower();
    t.m_encoding = dbf->encoding;
    t.m_recordCount = int(dbf->rowCount());
    t.m_columns.resize(size_t(dbf->columnCount()));
    for (int c = 0; c < dbf->columnCount(); ++c) {
        TableColumn &col = t.m_columns[size_t(c)];
        col.field = dbf->fields[c];
        col.caption = col.field.name;
        col.visible = !isDummy(col.field.name);
        col.values.reserve(dbf->rowCount());
        for (const auto &row : dbf->rows)
            col.values.push_back(row[size_t(c)]);
    }
    t.m_rows.resize(size_t(t.m_recordCount));
    for (int r = 0; r < t.m_recordCount; ++r)
        t.m_rows[size_t(r)] = r;
    return t;
}

QString AttributeTable::folder() const { return m_folder->folder(); }

int AttributeTable::fieldIndex(const QString &name) const
{
    for (int c = 0; c < columnCount(); ++c)
        if (m_columns[size_t(c)].field.name.compare(name, Qt::CaseInsensitive) == 0)
            return c;
    return -1;
}

bool AttributeTable::isNumeric(int c) const
{
    const DbfType t = m_columns[size_t(c)].field.type;
    return t == DbfType::Numeric || t == DbfType::Float;
}

bool AttributeTable::hasNumericColumn() const
{
    for (int c = 0; c < columnCount(); ++c)
        if (m_columns[size_t(c)].visible && isNumeric(c))
            return true;
    return false;
}

void AttributeTable::setUpColumns(const IndicatorCatalog &catalog, const QString &category)
{
    const bool base = isBaseTable(m_table);
    const bool filtered = !category.isEmpty() && category != kBaseCategoryCode;
    for (TableColumn &col : m_columns) {
        const QString &name = col.field.name;
        col.caption = name;
        if (base) {
            const QString text = catalog.description(name, filtered ? category : kBaseCategoryCode);
            if (text != kNoMatch && !text.isEmpty())
                col.caption = text;
        }
        // A category shows the base information and its own indicators.
        col.visible = !isDummy(name) && (!filtered || catalog.inCategory(name, category) || !catalog.isIndicator(name));
    }
}

QString AttributeTable::recordSource() const
{
    if (!m_order.isEmpty())
        return QStringLiteral("select * from ") + m_table + m_filter + m_order;
    if (!m_filter.isEmpty())
        return QStringLiteral("select * from ") + m_table + m_filter;
    return QStringLiteral("select *  from [") + m_table + QLatin1Char(']');
}

Result<std::vector<int>> AttributeTable::selectRecords(const QString &tail)
{
    // The rows of the in-memory copy keep the file's record order, so the
    // row id names the record.
    auto rs = m_folder->query(QStringLiteral("select rowid from [") + m_table + QLatin1Char(']') + tail);
    if (!rs)
        return rs.error();
    std::vector<int> records;
    records.reserve(rs->size());
    for (const auto &row : rs->rows) {
        const int r = row[0].toInt() - 1;
        if (r >= 0 && r < m_recordCount)
            records.push_back(r);
    }
    return records;
}

Status AttributeTable::applyFilter(const QString &filter)
{
    auto records = selectRecords(filter);
    if (!records)
        return records.error();
    m_filter = filter;
    m_order.clear();
    m_rows = std::move(*records);
    return {};
}

Status AttributeTable::sortBy(int c, SortOrder order)
{
    if (c < 0 || c >= columnCount())
        return Status::fail(texts::kNoColumn);
    const QString dir = order == SortOrder::Ascending ? QStringLiteral("ASC") : QStringLiteral("DESC");
    QString tail = QStringLiteral(" Order by [") + m_columns[size_t(c)].field.name + QStringLiteral("] ") + dir;
    if (fieldIndex(QStringLiteral("label")) >= 0)
        tail += QStringLiteral(", label ") + dir;
    auto records = selectRecords(m_filter + tail);
    if (!records)
        return records.error();
    m_order = tail;
    m_rows = std::move(*records);
    return {};
}

Status AttributeTable::showAll()
{
    m_filter.clear();
    m_order.clear();
    m_rows.resize(size_t(m_recordCount));
    for (int r = 0; r < m_recordCount; ++r)
        m_rows[size_t(r)] = r;
    return {};
}

QString AttributeTable::statusText() const
{
    QString text = QString::number(shownCount()) + QStringLiteral(" record di ") + QString::number(m_recordCount)
                   + QStringLiteral(" selezionati.");
    if (!m_filter.isEmpty())
        text += QStringLiteral("      (") + QString::number(m_recordCount)
                + QStringLiteral(" elementi nella tabella originaria)");
    return text;
}

QStringList AttributeTable::exportFields() const
{
    QStringList fields;
    for (const TableColumn &col : m_columns)
        if (!isDummy(col.field.name))
            fields << col.field.name;
    return fields;
}

Status AttributeTable::exportTo(const QString &path) const
{
    const QString source = m_folder->tablePath(m_table);
    if (!source.isEmpty() && QFileInfo(source).canonicalFilePath() == QFileInfo(path).canonicalFilePath())
        return Status::fail(texts::kExportOverSource);
    DbfTable out;
    out.encoding = m_encoding.isEmpty() ? QStringLiteral("UTF-8") : m_encoding;
    std::vector<int> columns;
    for (int c = 0; c < columnCount(); ++c)
        if (!isDummy(m_columns[size_t(c)].field.name)) {
            columns.push_back(c);
            out.fields << m_columns[size_t(c)].field;
        }
    // The statement has no order: records leave in the file's order.
    std::vector<int> records = m_rows;
    std::sort(records.begin(), records.end());
    out.rows.reserve(records.size());
    for (int r : records) {
        std::vector<QVariant> row;
        row.reserve(columns.size());
        for (int c : columns)
            row.push_back(m_columns[size_t(c)].values[size_t(r)]);
        out.rows.push_back(std::move(row));
    }
    return writeDbf(path, out);
}

int AttributeTable::keyColumn() const
{
    // Names repeat (two Castro, in Bergamo and in Lecce); the codes do not.
    const QString t = m_table.toUpper();
    const bool community = t == QLatin1String("COMMONT") || t.startsWith(QLatin1String("CMONT_"));
    for (const char *name : {community ? "PROG_MONT" : "COD_ISTAT", "Label"})
        if (const int c = fieldIndex(QLatin1String(name)); c >= 0)
            return c;
    return columnCount() > 2 ? 2 : -1;
}

QStringList AttributeTable::keyValues(const QList<int> &shownRows) const
{
    QStringList values;
    const int key = keyColumn();
    if (key < 0)
        return values;
    for (int row : shownRows) {
        if (row < 0 || row >= shownCount())
            continue;
        const QVariant v = value(row, key);
        if (!v.isNull())
            values << valueText(v);
    }
    return values;
}

QString AttributeTable::onMapCondition(const QList<int> &shownRows) const
{
    const int key = keyColumn();
    if (key < 0)
        return QString();
    const QString delimiter = m_columns[size_t(key)].field.type == DbfType::Text ? QStringLiteral("'")
                                                                               : QStringLiteral("%");
    QString condition;
    for (const QString &v : keyValues(shownRows))
        condition += m_columns[size_t(key)].field.name + QStringLiteral(" = ") + delimiter + sqlEscape(v) + delimiter
                     + QStringLiteral(" and ");
    condition.chop(condition.isEmpty() ? 0 : 5);
    return condition;
}

DbfWindowState AttributeTable::state(int column, const QList<int> &selectedShownRows, const QString &caption) const
{
    DbfWindowState s;
    s.folder = folder();
    s.table = m_table;
    s.filter = m_filter;
    s.column = column;
    s.caption = caption;
    s.fields = exportFields();
    for (const TableColumn &col : m_columns)
        if (col.visible) {
            s.visibleFields << col.field.name;
            s.visibleCaptions << col.caption;
        }
    for (int row : selectedShownRows)
        if (row >= 0 && row < shownCount())
            s.selectedRecords.push_back(m_rows[size_t(row)]);
    return s;
}

}  // namespace mervola
