#include "platform/dbf/DbfFolder.h"

#include "platform/JetFunctions.h"
#include "platform/dbf/DbfSql.h"
#include "platform/dbf/DbfValues.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <sqlite3.h>

namespace mervola
{

using dbfsql::Kind;

namespace
{

struct LoadedTable {
    QString path;
    qint64 size = -1;
    QDateTime modified;
    DbfTable table;
};

QString key(const QString &name)
{
    return name.toLower();
}

bool hasShapefile(const QString &dbfPath)
{
    const QFileInfo fi(dbfPath);
    const QStringList shp = QDir(fi.path()).entryList({fi.completeBaseName() + QStringLiteral(".shp")}, QDir::Files);
    return !shp.isEmpty();
}

} // namespace

struct DbfFolder::Impl {
    QString folder;
    SqliteDb db;
    QHash<QString, LoadedTable> loaded; // by lower-case table name

    QHash<QString, QString> listFiles() const
    {
        QHash<QString, QString> files;
        const QStringList entries = QDir(folder).entryList({QStringLiteral("*.dbf")}, QDir::Files);
        for (const QString &e : entries)
            files.insert(key(QFileInfo(e).completeBaseName()), folder + QLatin1Char('/') + e);
        return files;
    }

    Status ensureDb()
    {
        if (db.isOpen())
            return {};
        auto opened = SqliteDb::open(QStringLiteral(":memory:"), SqliteDb::Mode::Create);
        if (!opened)
            return opened.error();
        db = std::move(*opened);
        registerJetFunctions(db.handle());
        dbfvalues::registerJetTextCollation(db.handle());
        return {};
    }

    void unload(const QString &name)
    {
        auto it = loaded.find(key(name));
        if (it == loaded.end())
            return;
        (void)db.exec(QStringLiteral("DROP TABLE IF EXISTS %1").arg(sqlIdentifier(name)));
        loaded.erase(it);
    }

    // Loads or reloads every table of `names` whose file is new or changed.
    Status refresh(const QStringList &names, const QHash<QString, QString> &files)
    {
        for (const QString &name : names) {
            const QString k = key(name);
            const QString path = files.value(k);
            auto it = loaded.find(k);
            if (path.isEmpty()) {
                if (it != loaded.end())
                    unload(name);
                continue;
            }
            const QFileInfo fi(path);
            if (it != loaded.end() && it->path == path && it->size == fi.size() && it->modified == fi.lastModified())
                continue;
            if (auto s = load(QFileInfo(path).completeBaseName(), path); !s)
                return s;
        }
        return {};
    }

    Status load(const QString &name, const QString &path)
    {
        if (loaded.contains(key(name)))
            unload(name);
        const QFileInfo fi(path);
        const qint64 size = fi.size();
        const QDateTime modified = fi.lastModified();
        auto table = readDbf(path);
        if (!table)
            return table.error();
        if (auto s = dbfvalues::createSqlTable(db.handle(), name, *table); !s)
            return s;
        loaded.insert(key(name), LoadedTable{path, size, modified, std::move(*table)});
        return {};
    }

    void stamp(LoadedTable &t)
    {
        const QFileInfo fi(t.path);
        t.size = fi.size();
        t.modified = fi.lastModified();
    }

    Result<dbfsql::Statement> prepare(const QString &sql)
    {
        if (!QFileInfo(folder).isDir())
            return Result<dbfsql::Statement>::fail(QStringLiteral("Cartella non trovata: %1").arg(folder));
        if (auto s = ensureDb(); !s)
            return s.error();
        const QHash<QString, QString> files = listFiles();
        dbfsql::Statement st = dbfsql::analyze(sql, [&](const QString &n) { return files.contains(key(n)); });
        if (auto s = refresh(st.names, files); !s)
            return s.error();
        return st;
    }

    Result<int> selectInto(const dbfsql::Statement &st);
    Result<int> modify(const dbfsql::Statement &st);
    Result<int> dropTable(const dbfsql::Statement &st);
};

DbfFolder::DbfFolder(QString folder) : d(std::make_unique<Impl>())
{
    d->folder = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
}
DbfFolder::~DbfFolder() = default;
DbfFolder::DbfFolder(DbfFolder &&) noexcept = default;
DbfFolder &DbfFolder::operator=(DbfFolder &&) noexcept = default;

QString DbfFolder::folder() const
{
    return d->folder;
}

QStringList DbfFolder::tableNames() const
{
    QStringList names;
    const QStringList entries = QDir(d->folder).entryList({QStringLiteral("*.dbf")}, QDir::Files);
    for (const QString &e : entries)
        names.append(QFileInfo(e).completeBaseName());
    names.sort(Qt::CaseInsensitive);
    return names;
}

QString DbfFolder::tablePath(const QString &name) const
{
    return d->listFiles().value(key(name));
}

bool DbfFolder::returnsRows(const QString &sql)
{
    const dbfsql::Statement st = dbfsql::analyze(sql, [](const QString &) { return false; });
    return st.kind == Kind::Select;
}

Result<RowSet> DbfFolder::query(const QString &sql)
{
    auto st = d->prepare(sql);
    if (!st)
        return st.error();
    if (st->kind != Kind::Select)
        return Result<RowSet>::fail(QStringLiteral("L'istruzione non restituisce record: %1").arg(sql));
    auto rows = d->db.query(st->sql);
    if (!rows)
        return Result<RowSet>::fail(dbfvalues::italianSqlError(rows.errorMessage()), rows.error().code);
    return rows;
}

Result<int> DbfFolder::run(const QString &sql)
{
    auto st = d->prepare(sql);
    if (!st)
        return st.error();
    switch (st->kind) {
    case Kind::Select: {
        auto rows = d->db.query(st->sql);
        if (!rows)
            return Result<int>::fail(dbfvalues::italianSqlError(rows.errorMessage()), rows.error().code);
        return 0;
    }
    case Kind::SelectInto:
        return d->selectInto(*st);
    case Kind::Insert:
    case Kind::Update:
    case Kind::Delete:
        return d->modify(*st);
    case Kind::DropTable:
        return d->dropTable(*st);
    case Kind::Other:
        break;
    }
    return Result<int>::fail(QStringLiteral("Istruzione non supportata su una cartella dBase: %1").arg(sql));
}

Status DbfFolder::execute(const QString &sql)
{
    auto r = run(sql);
    if (!r)
        return r.error();
    return {};
}

Result<DbfTable> DbfFolder::table(const QString &name)
{
    if (auto s = d->ensureDb(); !s)
        return s.error();
    if (auto s = d->refresh({name}, d->listFiles()); !s)
        return s.error();
    auto it = d->loaded.find(key(name));
    if (it == d->loaded.end())
        return Result<DbfTable>::fail(QStringLiteral("Tabella non trovata: %1").arg(name));
    return it->table;
}

Result<int> DbfFolder::Impl::selectInto(const dbfsql::Statement &st)
{
    if (st.target.isEmpty() || st.target.contains(QLatin1Char('/')) || st.target.contains(QLatin1Char('\\')))
        return Result<int>::fail(QStringLiteral("Nome di tabella non valido: %1").arg(st.target));
    const QString dir = st.targetFolder.isEmpty() ? folder : QDir::cleanPath(st.targetFolder);
    if (!QFileInfo(dir).isDir())
        return Result<int>::fail(QStringLiteral("Cartella non trovata: %1").arg(dir));
    const QStringList existing = QDir(dir).entryList({st.target + QStringLiteral(".dbf")}, QDir::Files);
    if (!existing.isEmpty())
        return Result<int>::fail(QStringLiteral("La tabella %1 esiste già.").arg(st.target));
    QHash<QString, const DbfTable *> sources;
    for (auto it = loaded.cbegin(); it != loaded.cend(); ++it)
        sources.insert(it.key(), &it->table);
    auto table = dbfvalues::selectToTable(db.handle(), st.sql, sources);
    if (!table)
        return table.error();
    const QString path = dir + QLatin1Char('/') + st.target + QStringLiteral(".dbf");
    if (auto s = writeDbf(path, *table); !s)
        return s.error();
    return int(table->rowCount());
}

Result<int> DbfFolder::Impl::modify(const dbfsql::Statement &st)
{
    auto it = loaded.find(key(st.target));
    if (it == loaded.end())
        return Result<int>::fail(QStringLiteral("Tabella non trovata: %1").arg(st.target));
    if (auto s = db.begin(); !s)
        return s.error();
    auto changed = db.run(st.sql);
    if (!changed) {
        (void)db.rollback();
        return Result<int>::fail(dbfvalues::italianSqlError(changed.errorMessage()), changed.error().code);
    }
    if (*changed == 0) {
        (void)db.commit();
        return 0;
    }
    auto rewritten = dbfvalues::tableFromSql(db.handle(), QFileInfo(it->path).completeBaseName(), it->table);
    Status written = rewritten ? Status() : Status(rewritten.error());
    if (written && rewritten->rowCount() != it->table.rowCount() && hasShapefile(it->path))
        written = Status::fail(QStringLiteral("La tabella %1 appartiene a uno shapefile: non si possono aggiungere "
                                              "o eliminare record.")
                                   .arg(st.target));
    if (written)
        written = writeDbf(it->path, *rewritten);
    if (!written) {
        (void)db.rollback();
        return written.error();
    }
    (void)db.commit();
    it->table = std::move(*rewritten);
    stamp(*it);
    return *changed;
}

Result<int> DbfFolder::Impl::dropTable(const dbfsql::Statement &st)
{
    const QString path = listFiles().value(key(st.target));
    if (path.isEmpty())
        return Result<int>::fail(QStringLiteral("Tabella non trovata: %1").arg(st.target));
    if (hasShapefile(path))
        return Result<int>::fail(
            QStringLiteral("La tabella %1 appartiene a uno shapefile e non può essere eliminata.").arg(st.target));
    unload(st.target);
    const QString cpg = cpgPathFor(path);
    if (!QFile::remove(path))
        return Result<int>::fail(QStringLiteral("Impossibile eliminare la tabella %1.").arg(path));
    if (QFileInfo::exists(cpg))
        QFile::remove(cpg);
    return 0;
}

} // namespace mervola
