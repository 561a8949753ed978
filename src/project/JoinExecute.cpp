#include "project/JoinExecute.h"

#include "platform/AtlasHome.h"
#include "platform/KillPoint.h"
#include "platform/Messages.h"
#include "platform/Profile.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfTable.h"
#include "project/JoinFiles.h"
#include "project/JoinNames.h"
#include "project/JoinSource.h"
#include "project/JoinStaging.h"
#include "project/JoinTable.h"
#include "project/PristineSettings.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace mervola
{

namespace
{

JoinFailureHook &failureHook()
{
    static JoinFailureHook hook;
    return hook;
}

bool injectedFailure(JoinStep step)
{
    return failureHook() && failureHook()(step);
}

Error joinError(int code, const QString &message = {})
{
    switch (code) {
    case JoinError::SourceFailed:
    case JoinError::PathFailed:
        return {JoinText::kJoinFailed, code};
    case JoinError::FieldExists:
        return {JoinText::kFieldExists, code};
    case JoinError::LinkFailed:
        return {JoinText::kLinkRestored, code};
    case JoinError::DuplicateKey:
        return {JoinText::kNotUnique, code};
    case JoinError::EngineError:
        return {message, code};
    default:
        return {QString::number(code) + QStringLiteral("  ") + JoinText::kCannotJoin, code};
    }
}

// The table's files in the folder, matched without regard to case.
QString tableIn(const QString &folder, const QString &table)
{
    return resolveCaseInsensitive(folder, table + QStringLiteral(".dbf"));
}

void removeTable(const QString &dbfPath)
{
    QFile::remove(cpgPathFor(dbfPath));
    QFile::remove(dbfPath);
}

// One join from its request to the committed bookkeeping. Every file it
// creates or replaces is noted in `files`, every row it writes goes through
// the open transaction `tx`; an early return leaves both to roll back.
class JoinRun
{
public:
    JoinRun(const ReferenceDb &db, const JoinRequest &request, const std::optional<JoinSettingsFile> &settings)
        : m_db(db), m_request(request), m_settings(settings)
    {
        const QFileInfo shp(request.shapefilePath);
        m_folder = shp.absolutePath();
        const QString suffix = shp.suffix().toLower();
        m_outcome.themeTable =
            suffix == QLatin1String("shp") || suffix == QLatin1String("dbf") ? shp.completeBaseName() : shp.fileName();
        m_outcome.themeDbf = tableIn(m_folder, m_outcome.themeTable);
        m_shapefile = shp.fileName();
    }

    Result<JoinOutcome> run()
    {
        if (Status st = copySource(); !st)
            return st.error();
        if (Status st = readInputs(); !st)
            return st.error();
        if (Status st = buildTables(); !st)
            return st.error();
        if (Status st = replaceTheme(); !st)
            return st.error();
        if (Status st = rewriteSettings(); !st)
            return st.error();
        if (Status st = m_tx.commit(); !st)
            return joinError(JoinError::Bookkeeping);
        killPoint();
        m_tx.close();
        m_files.commit();
        removeWorkingFiles();
        return m_outcome;
    }

    ~JoinRun()
    {
        if (m_tx.isOpen())
            (void)m_tx.rollback();
        m_tx.close();
        m_files.rollback();
        removeWorkingFiles();
    }

private:
    Status step(JoinStep s, int code)
    {
        killPoint();
        if (injectedFailure(s))
            return joinError(code);
        return {};
    }

    // 2. A copy of a dBase or text source, so that the source file itself
    // is never opened. Its name never collides with a file of the folder.
    Status copySource()
    {
        m_readFolder = m_request.sourceFolder;
        m_readFile = m_request.sourceFile;
        if (m_request.sourceType == JoinSourceType::Access)
            return step(JoinStep::CopySource, JoinError::PathFailed);
        const QString original = resolveCaseInsensitive(m_request.sourceFolder, m_request.sourceFile);
        if (!QFileInfo(original).isFile())
            return joinError(JoinError::PathFailed);
        const QString ext = QLatin1Char('.') + QFileInfo(original).suffix();
        if (!makeCopyIn(m_request.sourceFolder, original, ext)) {
            m_scratch = std::make_unique<QTemporaryDir>(); // a folder the user may not write to
            if (!m_scratch->isValid() || !makeCopyIn(m_scratch->path(), original, ext))
                return joinError(JoinError::PathFailed);
        }
        return step(JoinStep::CopySource, JoinError::PathFailed);
    }

    bool makeCopyIn(const QString &folder, const QString &original, const QString &ext)
    {
        const QString name = freeWorkingCopyName(folder, ext);
        const QString copy = folder + QLatin1Char('/') + name;
        m_workCopies << copy;
        m_files.working(copy);
        if (!QFile::copy(original, copy))
            return false;
        killPoint();
        const QString cpg = cpgPathFor(original);
        if (m_request.sourceType == JoinSourceType::DbaseIV && QFileInfo::exists(cpg)) {
            m_workCopies << cpgPathFor(copy);
            m_files.working(cpgPathFor(copy));
            if (!QFile::copy(cpg, cpgPathFor(copy)))
                return false;
            killPoint();
        }
        m_readFolder = folder;
        m_readFile = name;
        return true;
    }

    // 3. The source, the staged column list and the theme table.
    Status readInputs()
    {
        auto source = readSource(m_request.sourceType, m_readFolder, m_readFile, m_request.sourceTable);
        if (!source)
            return joinError(JoinError::SourceFailed);
        m_source = std::move(source.value());
        auto staged = readStaged(m_db, QStringLiteral("where (INCLUSO=-1 and collegatoAFile = ") +
                                           sqlQuote(m_outcome.themeTable) + QStringLiteral(")"));
        if (!staged)
            return joinError(JoinError::EngineError, staged.errorMessage());
        m_staged = staged.value();
        auto theme = readDbf(m_outcome.themeDbf);
        if (!theme)
            return joinError(JoinError::SourceFailed);
        m_theme = std::move(theme.value());
        return step(JoinStep::ReadSource, JoinError::SourceFailed);
    }

    // 4-7. joinmdb and temp beside the theme table; a key that is not
    // unique multiplies records and stops the join.
    Status buildTables()
    {
        removeTable(tableIn(m_folder, QStringLiteral("temp")));
        removeTable(tableIn(m_folder, QStringLiteral("joinmdb")));
        auto ext = selectColumns(m_source, m_staged);
        if (!ext)
            return joinError(ext.error().code);
        fitColumns(ext.value(), m_theme.encoding);
        ext->encoding = m_theme.encoding;
        m_joinMdb = m_folder + QStringLiteral("/joinmdb.dbf");
        m_files.working(m_joinMdb);
        m_files.working(cpgPathFor(m_joinMdb));
        if (!writeDbf(m_joinMdb, ext.value()))
            return joinError(JoinError::LinkFailed);
        if (Status st = step(JoinStep::WriteJoinMdb, JoinError::LinkFailed); !st)
            return st;

        const int themeKey = m_theme.fieldIndex(m_request.themeJoinField);
        const int extKey = externalKeyColumn(ext.value(), m_request.extJoinField, m_staged);
        if (themeKey < 0 || extKey < 0)
            return joinError(JoinError::SourceFailed);
        auto joined = leftJoin(m_theme, themeKey, ext.value(), extKey);
        if (!joined)
            return joinError(joined.error().code);
        if (joined->rowCount() != m_theme.rowCount())
            return joinError(JoinError::DuplicateKey);
        m_temp = m_folder + QStringLiteral("/temp.dbf");
        m_files.working(m_temp);
        m_files.working(cpgPathFor(m_temp));
        if (!writeDbf(m_temp, joined.value()))
            return joinError(JoinError::LinkFailed);
        for (const DbfField &f : ext->fields)
            m_outcome.addedFields << f.name;
        return step(JoinStep::WriteTemp, JoinError::LinkFailed);
    }

    // 8-11. Backup, bookkeeping and the new theme table.
    Status replaceTheme()
    {
        const QString backup = joinBackupPath(m_outcome.themeDbf);
        const QString themeCpg = cpgPathFor(m_outcome.themeDbf);
        // The first join keeps the table as it was before any join; a later
        // join on the same theme leaves that backup alone.
        if (!QFileInfo::exists(backup)) {
            m_files.created(backup);
            if (!copyFileReplacing(m_outcome.themeDbf, backup))
                return joinError(JoinError::FileAccess);
            if (QFileInfo::exists(themeCpg)) {
                m_files.created(backup + QStringLiteral(".cpg"));
                if (!copyFileReplacing(themeCpg, backup + QStringLiteral(".cpg")))
                    return joinError(JoinError::FileAccess);
            }
        }
        if (!m_files.keep(m_outcome.themeDbf) || !m_files.keep(themeCpg))
            return joinError(JoinError::FileAccess);
        if (Status st = step(JoinStep::Backup, JoinError::FileAccess); !st)
            return st;

        // The reference database is kept as a file too, so that a process
        // killed after the rows are committed but before the operation ends
        // is taken back whole at the next start.
        if (!m_files.keep(m_db.path()))
            return joinError(JoinError::Bookkeeping);
        auto conn = m_db.open();
        if (!conn || !conn->begin())
            return joinError(JoinError::Bookkeeping);
        m_tx = std::move(conn.value());
        QStringList inserts;
        for (const QString &f : std::as_const(m_outcome.addedFields))
            inserts << QStringLiteral("INSERT INTO CAMPIJOIN (DBF,CAMPOAGGIUNTO,INDICELAYER,PATH) VALUES ") +
                           QStringLiteral("('") + sqlEscape(m_outcome.themeTable) + QStringLiteral("', '") +
                           sqlEscape(f) + QStringLiteral("',") + QString::number(m_request.layerIndex) +
                           QStringLiteral(", '") + sqlEscape(m_folder) + QStringLiteral("' );");
        if (!runAll(inserts))
            return joinError(JoinError::Bookkeeping);
        if (Status st = step(JoinStep::CampiJoin, JoinError::Bookkeeping); !st)
            return st;

        const QString tempCpg = cpgPathFor(m_temp);
        if (!renameReplacing(m_temp, m_outcome.themeDbf))
            return joinError(JoinError::FileAccess);
        if (QFileInfo::exists(tempCpg) && !renameReplacing(tempCpg, themeCpg))
            return joinError(JoinError::FileAccess);
        m_temp.clear();
        if (Status st = step(JoinStep::ReplaceTable, JoinError::FileAccess); !st)
            return st;

        const QString table =
            m_request.sourceType == JoinSourceType::Access ? m_request.sourceTable : m_request.sourceFile;
        m_join = {m_request.sourceFolder,   m_request.sourceFile,   table,
                  m_request.themeJoinField, m_request.extJoinField, m_shapefile};
        QStringList listed{
            QStringLiteral(
                "INSERT INTO LISTAJOIN (PATHDB,NOMEDB,NOMETABELLA,CAMPOJOININT,CAMPOJOINEXT,SHPCOLLEGATO) VALUES ('") +
            sqlEscape(m_join.pathDb) + QStringLiteral("', '") + sqlEscape(m_join.nomeDb) + QStringLiteral("', '") +
            sqlEscape(m_join.nomeTabella) + QStringLiteral("', '") + sqlEscape(m_join.campoJoinInt) +
            QStringLiteral("', '") + sqlEscape(m_join.campoJoinExt) + QStringLiteral("', '") +
            sqlEscape(m_join.shpCollegato) + QStringLiteral("');")};
        listed << columnNameStatements(m_join, m_staged);
        if (!runAll(listed))
            return joinError(JoinError::Bookkeeping);
        return step(JoinStep::ListaJoin, JoinError::Bookkeeping);
    }

    // 12. The settings file records the join (this join's row, which the
    // open transaction holds).
    Status rewriteSettings()
    {
        if (!m_settings)
            return {};
        const QString ini = m_settings->iniPath;
        if (!m_files.keep(ini))
            return joinError(JoinError::FileAccess);
        const ThemeSettings old = readThemeSettingsFile(ini, m_settings->layer.name);
        m_files.created(QFileInfo(ini).path() + QLatin1Char('/') + QFileInfo(ini).completeBaseName() +
                        QStringLiteral(".new"));
        if (!writeLinesReplacing(ini, afterJoinLines(old, m_settings->layer, m_join, m_outcome.addedFields)))
            return joinError(JoinError::FileAccess);
        return step(JoinStep::Settings, JoinError::FileAccess);
    }

    bool runAll(const QStringList &statements)
    {
        for (const QString &sql : statements) {
            if (!m_tx.run(ReferenceDb::toSqlite(sql)))
                return false;
            killPoint();
        }
        return true;
    }

    void removeWorkingFiles()
    {
        for (const QString &f : std::as_const(m_workCopies))
            QFile::remove(f);
        m_workCopies.clear();
        if (!m_joinMdb.isEmpty())
            removeTable(m_joinMdb);
        if (!m_temp.isEmpty())
            removeTable(m_temp);
        m_joinMdb.clear();
        m_temp.clear();
    }

    const ReferenceDb &m_db;
    const JoinRequest &m_request;
    const std::optional<JoinSettingsFile> &m_settings;
    QString m_folder;
    QString m_shapefile;
    JoinOutcome m_outcome;
    QString m_readFolder;
    QString m_readFile;
    QStringList m_workCopies;
    std::unique_ptr<QTemporaryDir> m_scratch;
    SourceTable m_source;
    QList<StagedField> m_staged;
    DbfTable m_theme;
    QString m_joinMdb;
    QString m_temp;
    JoinFields m_join;
    FileRollback m_files;
    SqliteDb m_tx;
};

} // namespace

void setJoinFailureHook(JoinFailureHook hook)
{
    failureHook() = std::move(hook);
}

QString joinBackupPath(const QString &themeDbf)
{
    const QFileInfo info(themeDbf);
    return info.absolutePath() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".bak");
}

Result<JoinOutcome> Execute_Join(const ReferenceDb &db, const JoinRequest &request,
                                 const std::optional<JoinSettingsFile> &settings)
{
    JoinRun run(db, request, settings);
    return run.run();
}

int joinErrorStyle(const Error &error)
{
    switch (error.code) {
    case JoinError::SourceFailed:
    case JoinError::PathFailed:
        return MsgStyle::Information;
    case JoinError::EngineError:
    case JoinError::FieldExists:
        return MsgStyle::Exclamation;
    default:
        return MsgStyle::Critical;
    }
}

void showJoinError(const Error &error)
{
    showMessage(joinErrorStyle(error), error.message);
}

Result<JoinOutcome> runJoin(const ReferenceDb &db, const JoinRequest &request, const QString &iniPath,
                            const LayerState &layer)
{
    return Execute_Join(db, request, JoinSettingsFile{iniPath, layer});
}

} // namespace mervola
