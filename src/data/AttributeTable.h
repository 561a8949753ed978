#pragma once
// The attribute table window's data: a theme's dBase table read once and kept
// column by column, the rows currently shown (filter and sort applied through
// the table folder's SQL, as record numbers), the columns' captions and
// visibility, and the operations of the window's toolbar that do not need a
// widget: status text, export, the condition that shows rows on the map.

#include "data/AttributeTableCatalog.h"
#include "platform/Result.h"
#include "platform/dbf/DbfFolder.h"
#include "platform/dbf/DbfTable.h"

#include <QList>
#include <QString>
#include <memory>
#include <vector>

namespace mervola {

// One column of the table: the field as declared and its values, one per record.
struct TableColumn {
    DbfField field;
    std::vector<QVariant> values;
    QString caption;       // header text: indicator description or the field name
    bool visible = true;   // false for DUMMY and for columns outside the chosen category
};

// What the statistics, chart and report windows read from the attribute window.
struct DbfWindowState {
    QString folder;         // the table's folder (the shapefile folder)
    QString table;          // lower-case table name ("commont", "comu_01" ...)
    QString filter;         // " WHERE condition" or empty
    int column = -1;        // the column last clicked (index into the table's fields), -1 when none
    QString caption;        // the window caption ("Tabella " + theme)
    QStringList fields;     // every field but DUMMY, in table order
    QStringList visibleFields;    // the fields shown in the grid
    QStringList visibleCaptions;  // their header captions
    std::vector<int> selectedRecords;  // records of the selected grid rows, in selection order
};

enum class SortOrder { Ascending, Descending };

class AttributeTable {
public:
    // Reads `table` (a .dbf of `folder`, matched without regard to case).
    static Result<AttributeTable> open(const QString &folder, const QString &table);

    AttributeTable(AttributeTable &&) noexcept;
    AttributeTable &operator=(AttributeTable &&) noexcept;
    ~AttributeTable();

    QString folder() const;
    QString table() const { return m_table; }  // lower case
    int recordCount() const { return m_recordCount; }
    int columnCount() const { return int(m_columns.size()); }
    const TableColumn &column(int c) const { return m_columns[size_t(c)]; }
    int fieldIndex(const QString &name) const;  // case-insensitive, -1 when absent
    bool isNumeric(int c) const;
    bool hasNumericColumn() const;

    // Record numbers of the rows shown, in their order.
    const std::vector<int> &rows() const { return m_rows; }
    int shownCount() const { return int(m_rows.size()); }
    QVariant value(int shownRow, int c) const { return m_columns[size_t(c)].values[size_t(m_rows[size_t(shownRow)])]; }

    // Captions from the catalog for the base tables, DUMMY hidden; with a
    // category other than "00" only the columns of that category's indicators
    // (and the fields of the structure rows) stay visible.
    void setUpColumns(const IndicatorCatalog &catalog, const QString &category);

    // The record source statement of the grid ("select *  from [t]", with the
    // filter and the order when set).
    QString recordSource() const;
    QString filter() const { return m_filter; }

    // Sets the filter (" WHERE condition" or empty) and reloads the rows; the
    // sort order is dropped. On failure nothing changes.
    Status applyFilter(const QString &filter);
    // Orders the shown rows by a column, ties by Label in the same direction.
    Status sortBy(int c, SortOrder order);
    // "Mostra": no filter, no order, every record.
    Status showAll();

    // Status panel text for the rows shown.
    QString statusText() const;

    // Fields written by the export: every field but DUMMY, in table order.
    QStringList exportFields() const;
    // Writes the filtered records (all fields but DUMMY) to `path`, replacing
    // a file of that name only once the new one is complete.
    Status exportTo(const QString &path) const;

    // The element key: the theme's unique code (PROG_MONT for the mountain
    // communities, COD_ISTAT where the table has it), else Label, else the
    // third field; -1 when none.
    int keyColumn() const;
    // The map condition for the given shown rows: key field = value, joined
    // by " and ". Empty when no row gives a value.
    QString onMapCondition(const QList<int> &shownRows) const;
    // The key values of the given shown rows, as text.
    QStringList keyValues(const QList<int> &shownRows) const;

    DbfWindowState state(int column, const QList<int> &selectedShownRows, const QString &caption) const;

private:
    AttributeTable() = default;
    Result<std::vector<int>> selectRecords(const QString &tail);

    std::unique_ptr<DbfFolder> m_folder;
    QString m_table;
    QString m_encoding;
    int m_recordCount = 0;
    std::vector<TableColumn> m_columns;
    std::vector<int> m_rows;
    QString m_filter;
    QString m_order;  // " Order by [f] ASC, label ASC" or empty
};

// True for the base tables whose indicator columns get descriptive captions:
// the mountain communities ("commont", "cmont_NN") and the municipalities
// ("comuni", "comu_NN").
bool isBaseTable(const QString &table);

}  // namespace mervola
