#include "platform/dbf/DbfValues.h"

#include "platform/Sqlite.h"
#include "platform/dbf/DbfSql.h"

#include <QDate>
#include <charconv>
#include <cmath>
#include <sqlite3.h>

namespace mervola::dbfvalues
{

namespace
{

const char *sqlType(const DbfField &f)
{
    switch (f.type) {
    case DbfType::Text:
        return "TEXT COLLATE JETTEXT";
    case DbfType::Numeric:
        return f.decimals == 0 ? "INTEGER" : "REAL";
    case DbfType::Float:
        return "REAL";
    case DbfType::Logical:
        return "INTEGER";
    case DbfType::Date:
        return "TEXT";
    }
    return "TEXT";
}

void bindCell(sqlite3_stmt *st, int index, const QVariant &v)
{
    if (v.isNull()) {
        sqlite3_bind_null(st, index);
        return;
    }
    switch (v.typeId()) {
    case QMetaType::Bool:
        sqlite3_bind_int(st, index, v.toBool() ? -1 : 0);
        break;
    case QMetaType::LongLong:
    case QMetaType::Int:
        sqlite3_bind_int64(st, index, v.toLongLong());
        break;
    case QMetaType::Double:
        sqlite3_bind_double(st, index, v.toDouble());
        break;
    case QMetaType::QDate: {
        const QByteArray iso = v.toDate().toString(Qt::ISODate).toUtf8();
        sqlite3_bind_text(st, index, iso.constData(), int(iso.size()), SQLITE_TRANSIENT);
        break;
    }
    default: {
        const QByteArray u = v.toString().toUtf8();
        sqlite3_bind_text(st, index, u.constData(), int(u.size()), SQLITE_TRANSIENT);
    }
    }
}

QVariant columnValue(sqlite3_stmt *st, int c)
{
    switch (sqlite3_column_type(st, c)) {
    case SQLITE_INTEGER:
        return QVariant(qlonglong(sqlite3_column_int64(st, c)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(st, c));
    case SQLITE_NULL:
        return {};
    default:
        return QVariant(
            QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, c)), sqlite3_column_bytes(st, c)));
    }
}

QString lastError(sqlite3 *db)
{
    return italianSqlError(QStringLiteral("Errore SQL: ") + QString::fromUtf8(sqlite3_errmsg(db)));
}

struct Statement {
    sqlite3_stmt *st = nullptr;
    ~Statement() { sqlite3_finalize(st); }
};

// Field for a computed column, from the values it holds.
DbfField inferField(const QString &name, const std::vector<std::vector<QVariant>> &rows, int c)
{
    bool anyText = false, anyReal = false, anyValue = false, negative = false;
    int textWidth = 1;
    double maxAbs = 0;
    for (const auto &row : rows) {
        const QVariant &v = row[size_t(c)];
        if (v.isNull())
            continue;
        anyValue = true;
        if (v.typeId() == QMetaType::QString) {
            anyText = true;
            textWidth = std::max(textWidth, int(v.toString().toUtf8().size()));
        } else {
            const double d = v.toDouble();
            anyReal = anyReal || v.typeId() == QMetaType::Double;
            negative = negative || d < 0;
            maxAbs = std::max(maxAbs, std::fabs(d));
            textWidth = std::max(textWidth, int(formatNumber(d).toUtf8().size()));
        }
    }
    if (!anyValue || anyText)
        return {name, DbfType::Text, std::min(textWidth, kDbfMaxTextWidth), 0};
    const int intDigits = maxAbs < 1.0 ? 1 : int(std::floor(std::log10(maxAbs))) + 1;
    const int sign = negative ? 1 : 0;
    if (!anyReal)
        return {name, DbfType::Numeric, std::min(intDigits + sign, kDbfMaxNumericWidth), 0};
    // Fifteen significant digits, within the twenty characters of a dBase number.
    const int decimals = std::clamp(15 - intDigits, 0, kDbfMaxNumericWidth - 2 - intDigits - sign);
    return {name, DbfType::Numeric, std::min(intDigits + sign + (decimals > 0 ? decimals + 1 : 0), kDbfMaxNumericWidth),
            decimals};
}

// Jet compares text without regard to case, accented letters included.
// ASCII text takes the same order as SQLite's NOCASE (letters folded to lower case).
int jetTextCompare(void *, int n1, const void *p1, int n2, const void *p2)
{
    const auto *a = static_cast<const unsigned char *>(p1);
    const auto *b = static_cast<const unsigned char *>(p2);
    const int n = std::min(n1, n2);
    for (int i = 0; i < n; ++i) {
        if ((a[i] | b[i]) & 0x80) {
            const QString sa = QString::fromUtf8(reinterpret_cast<const char *>(p1), n1);
            const QString sb = QString::fromUtf8(reinterpret_cast<const char *>(p2), n2);
            return sa.compare(sb, Qt::CaseInsensitive);
        }
        const int ca = a[i] >= 'A' && a[i] <= 'Z' ? a[i] + 32 : a[i];
        const int cb = b[i] >= 'A' && b[i] <= 'Z' ? b[i] + 32 : b[i];
        if (ca != cb)
            return ca - cb;
    }
    return n1 - n2;
}

} // namespace

void registerJetTextCollation(sqlite3 *db)
{
    sqlite3_create_collation_v2(db, "JETTEXT", SQLITE_UTF8, nullptr, jetTextCompare, nullptr);
}

QString formatNumber(double value)
{
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value);
    return QString::fromLatin1(buf, int(r.ptr - buf));
}

QString italianSqlError(const QString &message)
{
    static const std::pair<const char *, const char *> known[] = {
        {"no such table: ", "Tabella non trovata: "},
        {"no such column: ", "Campo non trovato: "},
        {"ambiguous column name: ", "Nome di campo ambiguo: "},
        {"no such function: ", "Funzione sconosciuta: "},
    };
    const QString prefix = QStringLiteral("Errore SQL: ");
    const QString body = message.startsWith(prefix) ? message.mid(prefix.size()) : message;
    for (const auto &[en, it] : known)
        if (body.startsWith(QLatin1String(en)))
            return QString::fromUtf8(it) + body.mid(int(qstrlen(en)));
    if (body.contains(QLatin1String("syntax error")))
        return QStringLiteral("Errore di sintassi SQL: ") + body;
    return message;
}

QVariant toFieldValue(const DbfField &field, const QVariant &v)
{
    if (v.isNull())
        return {};
    const bool isText = v.typeId() == QMetaType::QString;
    switch (field.type) {
    case DbfType::Text:
        if (v.typeId() == QMetaType::Double)
            return formatNumber(v.toDouble());
        return v.toString();
    case DbfType::Numeric:
    case DbfType::Float: {
        bool ok = true;
        const double d = isText ? v.toString().trimmed().toDouble(&ok) : v.toDouble();
        if (isText && v.toString().trimmed().isEmpty())
            return {};
        if (!ok)
            return v; // refused with a clear message when the table is checked
        if (field.type == DbfType::Numeric && field.decimals == 0 && std::fabs(d) < 9.2e18)
            return qlonglong(std::llround(d));
        return d;
    }
    case DbfType::Logical: {
        if (!isText)
            return v.toDouble() != 0.0;
        const QString s = v.toString().trimmed().toUpper();
        if (s.isEmpty() || s == QLatin1String("?"))
            return {};
        return !(s.startsWith(QLatin1Char('F')) || s.startsWith(QLatin1Char('N')) || s == QLatin1String("0"));
    }
    case DbfType::Date: {
        if (v.typeId() == QMetaType::QDate)
            return v;
        if (isText && v.toString().trimmed().isEmpty())
            return {};
        const QDate d = QDate::fromString(v.toString().left(10), Qt::ISODate);
        return d.isValid() ? QVariant(d) : v;
    }
    }
    return v;
}

Status createSqlTable(sqlite3 *db, const QString &name, const DbfTable &table)
{
    QStringList columns;
    for (const DbfField &f : table.fields)
        columns << sqlIdentifier(f.name) + QLatin1Char(' ') + QLatin1String(sqlType(f));
    const QString create = QStringLiteral("DROP TABLE IF EXISTS %1; CREATE TABLE %1 (%2);")
                               .arg(sqlIdentifier(name), columns.join(QStringLiteral(", ")));
    if (sqlite3_exec(db, "SAVEPOINT dbf_load", nullptr, nullptr, nullptr) != SQLITE_OK)
        return Status::fail(lastError(db));
    const auto fail = [db](const QString &message) {
        sqlite3_exec(db, "ROLLBACK TO dbf_load; RELEASE dbf_load", nullptr, nullptr, nullptr);
        return Status::fail(message);
    };
    if (sqlite3_exec(db, create.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        return fail(QStringLiteral("Impossibile caricare la tabella %1: %2").arg(name, lastError(db)));
    QStringList marks;
    for (int i = 0; i < table.columnCount(); ++i)
        marks << QStringLiteral("?");
    const QByteArray insert =
        QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(sqlIdentifier(name), marks.join(QLatin1Char(','))).toUtf8();
    Statement ins;
    if (sqlite3_prepare_v2(db, insert.constData(), int(insert.size()), &ins.st, nullptr) != SQLITE_OK)
        return fail(lastError(db));
    for (const auto &row : table.rows) {
        for (int i = 0; i < table.columnCount(); ++i)
            bindCell(ins.st, i + 1, row[size_t(i)]);
        if (sqlite3_step(ins.st) != SQLITE_DONE)
            return fail(lastError(db));
        sqlite3_reset(ins.st);
    }
    sqlite3_exec(db, "RELEASE dbf_load", nullptr, nullptr, nullptr);
    return {};
}

Result<DbfTable> tableFromSql(sqlite3 *db, const QString &name, const DbfTable &shape)
{
    const QByteArray sql = QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(sqlIdentifier(name)).toUtf8();
    Statement q;
    if (sqlite3_prepare_v2(db, sql.constData(), int(sql.size()), &q.st, nullptr) != SQLITE_OK)
        return Result<DbfTable>::fail(lastError(db));
    DbfTable out;
    out.fields = shape.fields;
    out.encoding = shape.encoding;
    const int n = std::min(sqlite3_column_count(q.st), int(shape.fields.size()));
    int rc;
    while ((rc = sqlite3_step(q.st)) == SQLITE_ROW) {
        std::vector<QVariant> row(static_cast<size_t>(shape.fields.size()));
        for (int c = 0; c < n; ++c)
            row[size_t(c)] = toFieldValue(shape.fields[c], columnValue(q.st, c));
        out.rows.push_back(std::move(row));
    }
    if (rc != SQLITE_DONE)
        return Result<DbfTable>::fail(lastError(db));
    return out;
}

Result<DbfTable> selectToTable(sqlite3 *db, const QString &sql, const QHash<QString, const DbfTable *> &sources)
{
    const QByteArray text = sql.toUtf8();
    Statement q;
    if (sqlite3_prepare_v2(db, text.constData(), int(text.size()), &q.st, nullptr) != SQLITE_OK)
        return Result<DbfTable>::fail(lastError(db));
    const int n = sqlite3_column_count(q.st);
    QStringList columnNames;
    std::vector<const DbfField *> origin(static_cast<size_t>(n), nullptr);
    for (int c = 0; c < n; ++c) {
        columnNames << QString::fromUtf8(sqlite3_column_name(q.st, c));
        const char *table = sqlite3_column_table_name(q.st, c);
        const char *column = sqlite3_column_origin_name(q.st, c);
        if (!table || !column)
            continue;
        const DbfTable *source = sources.value(QString::fromUtf8(table).toLower());
        const int f = source ? source->fieldIndex(QString::fromUtf8(column)) : -1;
        if (f >= 0)
            origin[size_t(c)] = &source->fields[f];
    }
    std::vector<std::vector<QVariant>> raw;
    int rc;
    while ((rc = sqlite3_step(q.st)) == SQLITE_ROW) {
        std::vector<QVariant> row(static_cast<size_t>(n));
        for (int c = 0; c < n; ++c)
            row[size_t(c)] = columnValue(q.st, c);
        raw.push_back(std::move(row));
    }
    if (rc != SQLITE_DONE)
        return Result<DbfTable>::fail(lastError(db));

    DbfTable out;
    const QStringList names = dbfsql::dbaseFieldNames(columnNames);
    for (int c = 0; c < n; ++c) {
        DbfField f = origin[size_t(c)] ? *origin[size_t(c)] : inferField(names[c], raw, c);
        f.name = names[c];
        out.fields.append(f);
    }
    for (auto &row : raw) {
        for (int c = 0; c < n; ++c)
            row[size_t(c)] = toFieldValue(out.fields[c], row[size_t(c)]);
        out.rows.push_back(std::move(row));
    }
    return out;
}

} // namespace mervola::dbfvalues
