#include "platform/access/AccessFile.h"

#include <QFile>

#include <mdbtools.h>

#include <memory>

namespace mervola
{

namespace
{

struct MdbCloser {
    void operator()(MdbHandle *h) const { mdb_close(h); }
};
struct TableCloser {
    void operator()(MdbTableDef *t) const { mdb_free_tabledef(t); }
};
using MdbPtr = std::unique_ptr<MdbHandle, MdbCloser>;
using TablePtr = std::unique_ptr<MdbTableDef, TableCloser>;

Result<MdbPtr> openMdb(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    MdbPtr mdb(mdb_open(name.constData(), MDB_NOFLAGS));
    if (!mdb || !mdb_read_catalog(mdb.get(), MDB_TABLE))
        return Result<MdbPtr>::fail(kAccessUnreadable);
    mdb_set_date_fmt(mdb.get(), "%Y-%m-%d");
    mdb_set_boolean_fmt_numbers(mdb.get());
    return mdb;
}

} // namespace

Result<QStringList> readAccessTableNamesHere(const QString &mdbPath)
{
    auto mdb = openMdb(mdbPath);
    if (!mdb)
        return mdb.error();
    QStringList names;
    for (guint i = 0; i < mdb.value()->num_catalog; ++i) {
        auto *entry = static_cast<MdbCatalogEntry *>(g_ptr_array_index(mdb.value()->catalog, i));
        if (entry->object_type == MDB_TABLE && !mdb_is_system_table(entry))
            names << QString::fromUtf8(entry->object_name);
    }
    return names;
}

Result<AccessRows> readAccessRowsHere(const QString &mdbPath, const QString &tableName)
{
    auto mdb = openMdb(mdbPath);
    if (!mdb)
        return mdb.error();
    QByteArray name = tableName.toUtf8();
    TablePtr table(mdb_read_table_by_name(mdb.value().get(), name.data(), MDB_TABLE));
    if (!table || !mdb_read_columns(table.get()))
        return Result<AccessRows>::fail(kAccessUnreadable);

    AccessRows out;
    const int n = int(table->num_cols);
    std::vector<std::vector<char>> buffers(std::size_t(n), std::vector<char>(MDB_BIND_SIZE));
    std::vector<int> lengths(std::size_t(n), 0);
    for (int i = 0; i < n; ++i) {
        auto *col = static_cast<MdbColumn *>(g_ptr_array_index(table->columns, guint(i)));
        out.columns << AccessColumn{QString::fromUtf8(col->name), int(col->col_type), int(col->col_size)};
        mdb_bind_column(table.get(), i + 1, buffers[std::size_t(i)].data(), &lengths[std::size_t(i)]);
    }
    mdb_rewind_table(table.get());
    while (mdb_fetch_row(table.get())) {
        std::vector<QByteArray> row;
        row.reserve(std::size_t(n));
        for (int i = 0; i < n; ++i) {
            const int len = std::min(lengths[std::size_t(i)], int(MDB_BIND_SIZE));
            row.push_back(len > 0 ? QByteArray(buffers[std::size_t(i)].data(), len) : QByteArray());
        }
        out.rows.push_back(std::move(row));
    }
    return out;
}

} // namespace mervola
