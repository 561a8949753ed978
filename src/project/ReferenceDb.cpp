#include "project/ReferenceDb.h"

#include "platform/JetFunctions.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfSql.h"

#include <QFile>
#include <QFileInfo>

namespace mervola
{

namespace
{

// Text columns compare without regard to case, as Jet's do.
const char *const kSchema = R"SQL(
CREATE TABLE STRUTTURE (
  Label TEXT COLLATE NOCASE, Alias TEXT COLLATE NOCASE, Tabella TEXT COLLATE NOCASE,
  Tematizza INTEGER NOT NULL DEFAULT 0, Fieldjoin INTEGER NOT NULL DEFAULT 0);
CREATE TABLE ALIASTEMI (ALIAS TEXT COLLATE NOCASE, NOMETEMAORIGINALE TEXT COLLATE NOCASE);
CREATE TABLE CATEGORIE ("Codice Categoria" TEXT COLLATE NOCASE PRIMARY KEY, Categoria TEXT COLLATE NOCASE);
CREATE TABLE INDICATORI (
  ind TEXT COLLATE NOCASE, cod_ind TEXT COLLATE NOCASE PRIMARY KEY, Cat TEXT COLLATE NOCASE,
  Fonte TEXT COLLATE NOCASE, Unita TEXT COLLATE NOCASE);
CREATE TABLE CAMPIJOIN (DBF TEXT COLLATE NOCASE, CAMPOAGGIUNTO TEXT COLLATE NOCASE, INDICELAYER INTEGER,
  PATH TEXT COLLATE NOCASE);
CREATE TABLE LISTAJOIN (PATHDB TEXT COLLATE NOCASE, NOMEDB TEXT COLLATE NOCASE, NOMETABELLA TEXT COLLATE NOCASE,
  CAMPOJOININT TEXT COLLATE NOCASE, CAMPOJOINEXT TEXT COLLATE NOCASE, SHPCOLLEGATO TEXT COLLATE NOCASE);
CREATE TABLE STRUCTJOIN (INCLUSO INTEGER NOT NULL DEFAULT 0, NOMECAMPO TEXT COLLATE NOCASE,
  ALIASCAMPO TEXT COLLATE NOCASE, TIPOCAMPO INTEGER, STRTIPOCAMPO TEXT COLLATE NOCASE,
  CONFLITTO INTEGER NOT NULL DEFAULT 0, NOMECONFLITTO TEXT COLLATE NOCASE, PATH TEXT COLLATE NOCASE,
  FILE TEXT COLLATE NOCASE, TIPOFONTE TEXT COLLATE NOCASE, COLLEGATOAPATH TEXT COLLATE NOCASE,
  COLLEGATOAFILE TEXT COLLATE NOCASE);
CREATE TABLE TempRpt (DUMMY TEXT);
CREATE TABLE JoinMdb (DUMMY TEXT);
CREATE VIEW qryTutteCategorie AS
  SELECT "Codice Categoria", Categoria FROM CATEGORIE ORDER BY "Codice Categoria";
CREATE VIEW qrySelezioneIndicatoriFonti AS
  SELECT I.cod_ind AS COD_IND, I.ind AS IND, I.Cat AS CAT, I.Fonte AS FONTE, I.Unita AS UNITA,
         C."Codice Categoria" AS CODICECATEGORIA
  FROM INDICATORI I LEFT JOIN CATEGORIE C ON I.Cat = C.Categoria
  ORDER BY I.cod_ind;
)SQL";

} // namespace

QString ReferenceDb::toSqlite(const QString &jetSql)
{
    return dbfsql::bracketNumericTableNames(translateJetSql(jetSql));
}

Status ReferenceDb::createSchema(const QString &path)
{
    if (QFileInfo::exists(path) && !QFile::remove(path))
        return Status::fail(QStringLiteral("Impossibile sostituire il database %1.").arg(path));
    auto db = SqliteDb::open(path, SqliteDb::Mode::Create);
    if (!db)
        return db.error();
    return db->exec(QString::fromUtf8(kSchema));
}

Result<SqliteDb> ReferenceDb::open(SqliteDb::Mode mode) const
{
    if (!QFileInfo::exists(m_path))
        return Result<SqliteDb>::fail(QStringLiteral("Database di riferimento non trovato: %1").arg(m_path));
    auto db = SqliteDb::open(m_path, mode);
    if (db)
        registerJetFunctions(db->handle());
    return db;
}

Result<RowSet> ReferenceDb::query(const QString &jetSql) const
{
    auto db = open();
    if (!db)
        return db.error();
    return db->query(toSqlite(jetSql));
}

Result<int> ReferenceDb::run(const QString &jetSql) const
{
    auto db = open();
    if (!db)
        return db.error();
    return db->run(toSqlite(jetSql));
}

Status ReferenceDb::execute(const QString &jetSql) const
{
    auto r = run(jetSql);
    if (!r)
        return r.error();
    return {};
}

Status ReferenceDb::executeAll(const QStringList &jetStatements) const
{
    auto db = open();
    if (!db)
        return db.error();
    if (auto s = db->begin(); !s)
        return s;
    for (const QString &sql : jetStatements) {
        auto r = db->run(toSqlite(sql));
        if (!r) {
            (void)db->rollback();
            return r.error();
        }
    }
    return db->commit();
}

} // namespace mervola
