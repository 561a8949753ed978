#include "platform/Sqlite.h"

#include <sqlite3.h>

namespace mervola {

int RowSet::columnIndex(const QString &name) const
{
    for (int i = 0; i < columns.size(); ++i)
        if (columns[i].compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

QVariant RowSet::value(size_t row, const QString &column) const
{
    const int c = columnIndex(column);
    if (c < 0 || row >= rows.size())
        return {};
    return rows[row][size_t(c)];
}

SqliteDb::~SqliteDb() { close(); }

SqliteDb::SqliteDb(SqliteDb &&other) noexcept : m_db(other.m_db) { other.m_db = nullptr; }

SqliteDb &SqliteDb::operator=(SqliteDb &&other) noexcept
{
    if (this != &other) {
        close();
        m_db = other.m_db;
        other.m_db = nullptr;
    }
    return *this;
}

Result<SqliteDb> SqliteDb::open(const QString &path, Mode mode)
{
    int flags = SQLITE_OPEN_FULLMUTEX;
    switch (mode) {
    case Mode::ReadOnly: flags |= SQLITE_OPEN_READONLY; break;
    case Mode::ReadWrite: flags |= SQLITE_OPEN_READWRITE; break;
    case Mode::Create: flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE; break;
    }
    sqlite3 *db = nullptr;
    const int rc = sqlite3_open_v2(path.toUtf8().constData(), &db, flags, nullptr);
    if (rc != SQLITE_OK) {
        QString msg = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QStringLiteral("memoria esaurita");
        if (db)
            sqlite3_close(db);
        return Result<SqliteDb>::fail(QStringLiteral("Impossibile aprire il database %1: %2").arg(path, msg), rc);
    }
    sqlite3_busy_timeout(db, 5000);
    return SqliteDb(db);
}

void SqliteDb::close()
{
    if (m_db) {
        sqlite3_close_v2(m_db);
        m_db = nullptr;
    }
}

QString SqliteDb::lastError() const
{
    return m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QString();
}

Status SqliteDb::exec(const QString &sql)
{
    if (!m_db)
        return Status::fail(QStringLiteral("Database non aperto."));
    char *err = nullptr;
    const int rc = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &err);
    if (rc != SQLITE_OK) {
        QString msg = err ? QString::fromUtf8(err) : lastError();
        sqlite3_free(err);
        return Status::fail(QStringLiteral("Errore SQL: %1").arg(msg), rc);
    }
    return {};
}

static void bindValue(sqlite3_stmt *st, int index, const QVariant &v)
{
    if (!v.isValid() || v.isNull()) {
        sqlite3_bind_null(st, index);
        return;
    }
    switch (v.typeId()) {
    case QMetaType::Bool: sqlite3_bind_int(st, index, v.toBool() ? -1 : 0); break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::Short: sqlite3_bind_int64(st, index, v.toLongLong()); break;
    case QMetaType::Double:
    case QMetaType::Float: sqlite3_bind_double(st, index, v.toDouble()); break;
    case QMetaType::QByteArray: {
        const QByteArray b = v.toByteArray();
        sqlite3_bind_blob(st, index, b.constData(), int(b.size()), SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QByteArray u = v.toString().toUtf8();
        sqlite3_bind_text(st, index, u.constData(), int(u.size()), SQLITE_TRANSIENT);
    }
    }
}

Result<sqlite3_stmt *> SqliteDb::prepare(const QString &sql, const QVariantList &params)
{
    if (!m_db)
        return Result<sqlite3_stmt *>::fail(QStringLiteral("Database non aperto."));
    sqlite3_stmt *st = nullptr;
    const QByteArray u = sql.toUtf8();
    const char *tail = nullptr;
    const int rc = sqlite3_prepare_v2(m_db, u.constData(), int(u.size()), &st, &tail);
    if (rc != SQLITE_OK || !st) {
        if (st)
            sqlite3_finalize(st);
        return Result<sqlite3_stmt *>::fail(QStringLiteral("Errore SQL: %1").arg(lastError()), rc);
    }
    // One statement only: text after it that is more than blanks, ";" or a
    // comment would otherwise be dropped without a word.
    const char *end = u.constData() + u.size();
    if (tail && tail < end) {
        sqlite3_stmt *next = nullptr;
        const int rcNext = sqlite3_prepare_v2(m_db, tail, int(end - tail), &next, nullptr);
        if (next || rcNext != SQLITE_OK) {
            sqlite3_finalize(next);
            sqlite3_finalize(st);
            return Result<sqlite3_stmt *>::fail(QStringLiteral("Errore SQL: testo dopo la fine dell'istruzione."),
                                                SQLITE_ERROR);
        }
    }
    for (int i = 0; i < params.size(); ++i)
        bindValue(st, i + 1, params[i]);
    return st;
}

static QVariant storedValue(sqlite3_stmt *st, int c)
{
    switch (sqlite3_column_type(st, c)) {
    case SQLITE_INTEGER: return QVariant(qlonglong(sqlite3_column_int64(st, c)));
    case SQLITE_FLOAT: return QVariant(sqlite3_column_double(st, c));
    case SQLITE_TEXT:
        return QVariant(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, c)),
                                          sqlite3_column_bytes(st, c)));
    case SQLITE_BLOB:
        return QVariant(QByteArray(static_cast<const char *>(sqlite3_column_blob(st, c)),
                                   sqlite3_column_bytes(st, c)));
    default: return QVariant();
    }
}

Result<RowSet> SqliteDb::query(const QString &sql, const QVariantList &params)
{
    auto prepared = prepare(sql, params);
    if (!prepared)
        return prepared.error();
    sqlite3_stmt *st = *prepared;
    RowSet rs;
    const int n = sqlite3_column_count(st);
    for (int c = 0; c < n; ++c)
        rs.columns << QString::fromUtf8(sqlite3_column_name(st, c));
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        std::vector<QVariant> row(static_cast<size_t>(n));
        for (int c = 0; c < n; ++c)
            row[size_t(c)] = storedValue(st, c);
        rs.rows.push_back(std::move(row));
    }
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE)
        return Result<RowSet>::fail(QStringLiteral("Errore SQL: %1").arg(lastError()), rc);
    return rs;
}

Result<int> SqliteDb::run(const QString &sql, const QVariantList &params)
{
    auto prepared = prepare(sql, params);
    if (!prepared)
        return prepared.error();
    sqlite3_stmt *st = *prepared;
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
    }
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE)
        return Result<int>::fail(QStringLiteral("Errore SQL: %1").arg(lastError()), rc);
    return sqlite3_changes(m_db);
}

Status SqliteDb::runEach(const QString &sql, size_t count, const std::function<QVariantList(size_t)> &params)
{
    auto prepared = prepare(sql, {});
    if (!prepared)
        return prepared.error();
    sqlite3_stmt *st = *prepared;
    for (size_t i = 0; i < count; ++i) {
        const QVariantList values = params(i);
        for (int p = 0; p < values.size(); ++p)
            bindValue(st, p + 1, values[p]);
        int rc;
        while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        }
        if (rc != SQLITE_DONE) {
            const QString error = lastError();
            sqlite3_finalize(st);
            return Status::fail(QStringLiteral("Errore SQL: %1").arg(error), rc);
        }
        sqlite3_reset(st);
        sqlite3_clear_bindings(st);
    }
    sqlite3_finalize(st);
    return {};
}

QString sqlIdentifier(const QString &name)
{
    QString n = name;
    n.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + n + QLatin1Char('"');
}

}  // namespace mervola
