#pragma once
// Thin RAII layer over the SQLite C API: one connection, statements that
// finalize themselves, and result sets as plain rows of QVariant.

#include "platform/Result.h"

#include <QStringList>
#include <QVariant>
#include <functional>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace mervola {

// Rows of a query; column names as the statement produced them.
struct RowSet {
    QStringList columns;
    std::vector<std::vector<QVariant>> rows;

    int columnIndex(const QString &name) const;  // case-insensitive, -1 when absent
    QVariant value(size_t row, const QString &column) const;
    bool empty() const { return rows.empty(); }
    size_t size() const { return rows.size(); }
};

class SqliteDb {
public:
    enum class Mode { ReadOnly, ReadWrite, Create };

    SqliteDb() = default;
    ~SqliteDb();
    SqliteDb(const SqliteDb &) = delete;
    SqliteDb &operator=(const SqliteDb &) = delete;
    SqliteDb(SqliteDb &&other) noexcept;
    SqliteDb &operator=(SqliteDb &&other) noexcept;

    // Opens a file (or ":memory:"). The error text is Italian.
    static Result<SqliteDb> open(const QString &path, Mode mode = Mode::ReadWrite);

    bool isOpen() const { return m_db != nullptr; }
    sqlite3 *handle() const { return m_db; }
    void close();

    // Runs one or more statements that return no rows.
    Status exec(const QString &sql);
    // Runs one statement with optional positional parameters (?1, ?2 ...).
    Result<RowSet> query(const QString &sql, const QVariantList &params = {});
    // Runs one statement with parameters, discarding rows; returns changed rows.
    Result<int> run(const QString &sql, const QVariantList &params = {});

    // Runs one statement `count` times, prepared once, with the parameters
    // that `params` gives for each run (0 to count - 1).
    Status runEach(const QString &sql, size_t count, const std::function<QVariantList(size_t)> &params);

    Status begin() { return exec(QStringLiteral("BEGIN")); }
    Status commit() { return exec(QStringLiteral("COMMIT")); }
    Status rollback() { return exec(QStringLiteral("ROLLBACK")); }

    QString lastError() const;

private:
    explicit SqliteDb(sqlite3 *db) : m_db(db) {}
    Result<sqlite3_stmt *> prepare(const QString &sql, const QVariantList &params);
    sqlite3 *m_db = nullptr;
};

// Quotes an identifier for SQLite: "name" with inner quotes doubled.
QString sqlIdentifier(const QString &name);

}  // namespace mervola
