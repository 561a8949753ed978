// A user's condition, as the query builder of the map and the table's query
// box run it on a dBase table through SQLite.
#include "FuzzTargets.h"

#include "data/AttributeTable.h"
#include "data/MapQuery.h"
#include "data/TableQuery.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfFolder.h"
#include "platform/dbf/DbfTable.h"

#include <QDate>
#include <optional>

namespace mervola::fuzz
{

namespace
{

// A small table with a field of every kind, written once per process.
QString tableFolder()
{
    static const QString folder = [] {
        DbfTable t;
        t.fields = {
            {QStringLiteral("Label"), DbfType::Text, 20, 0},  {QStringLiteral("NOME"), DbfType::Text, 30, 0},
            {QStringLiteral("POP"), DbfType::Numeric, 9, 0},  {QStringLiteral("QUOTA"), DbfType::Numeric, 12, 3},
            {QStringLiteral("FLAG"), DbfType::Logical, 1, 0}, {QStringLiteral("DATA"), DbfType::Date, 8, 0}};
        t.rows = {{QStringLiteral("001"), QStringLiteral("Aosta"), qlonglong(34000), 583.5, true, QDate(2001, 1, 2)},
                  {QStringLiteral("002"), QStringLiteral("L'Aquila"), qlonglong(69000), 714.0, false, QVariant()},
                  {QStringLiteral("003"), QVariant(), QVariant(), QVariant(), QVariant(), QVariant()}};
        (void)writeDbf(scratchFolder() + QStringLiteral("/t.dbf"), t);
        return scratchFolder();
    }();
    return folder;
}

} // namespace

int fuzzCondition(const std::uint8_t *data, std::size_t size)
{
    const QString condition = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    static DbfFolder folder(tableFolder());
    static std::optional<AttributeTable> table = [] {
        auto t = AttributeTable::open(tableFolder(), QStringLiteral("t"));
        return t ? std::optional<AttributeTable>(std::move(t.value())) : std::nullopt;
    }();
    (void)translateJetSql(condition);
    (void)runMapQuery(folder, QStringLiteral("t"), condition);
    if (table)
        (void)runTableQuery(*table, condition);
    return 0;
}

} // namespace mervola::fuzz
