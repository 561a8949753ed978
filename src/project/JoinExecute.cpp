#include "project/JoinExecute.h"

#include "platform/AtlasHome.h"
#include "platform/Messages.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfTable.h"
#include "project/JoinSource.h"
#include "project/JoinStaging.h"
#include "project/PristineSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

namespace mervola {

namespace {

Error joinError(int code, const QString &message = {})
{
    switch (code) {
    case JoinError::SourceFailed:
    case JoinError::PathFailed: return {JoinText::kJoinFailed, code};
    case JoinError::FieldExists: return {JoinText::kFieldExists, code};
    case JoinError::LinkFailed: return {JoinText::kLinkRestored, code};
    case JoinError::DuplicateKey: return {JoinText::kNotUnique, code};
    case JoinError::EngineError: return {message, code};
    default: return {QString::number(code) + QStringLiteral("  ") + JoinText::kCannotJoin, code};
    }
}

void removeTable(const QString &dbfPath)
{
    const QString cpg = cpgPathFor(dbfPath);
    QFile::remove(dbfPath);
    QFile::remove(cpg);
}

// The table's files in the folder, matched without regard to case.
QString tableIn(const QString &folder, const QString &table)
{
    return resolveCaseInsensitive(folder, table + QStringLiteral(".dbf"));
}

// Normalised join key: numbers by value, text trimmed and upper-cased (the
// engine compares text without regard to case). Null keys match nothing.
QString keyOf(const QVariant &v)
{
    if (v.isNull())
        return {};
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double: return QStringLiteral("#") + QString::number(v.toDouble(), 'g', 17);
    default: break;
    }
    const QString s = v.toString().trimmed().toUpper();
    return s.isEmpty() ? QString() : QStringLiteral("$") + s;
}

// The external table as brought beside the theme table: the included
// columns, renamed as staged, names cut to the dBase limit.
Result<DbfTable> selectColumns(const SourceTable &source, const QList<StagedField> &rows)
{
    DbfTable out;
    out.encoding = source.table.encoding;
    QList<int> columns;
    for (const StagedField &r : rows) {
        if (!r.incluso)
            continue;
        const int c = source.table.fieldIndex(r.nomeCampo.left(kDbfMaxFieldNameLength));
        if (c < 0)
            return joinError(JoinError::SourceFailed);
        DbfField f = source.table.fields[c];
        f.name = r.outputName().left(kDbfMaxFieldNameLength);
        if (out.fieldIndex(f.name) >= 0)
            return joinError(JoinError::FieldExists);
        out.fields << f;
        columns << c;
    }
    for (const auto &src : source.table.rows) {
        std::vector<QVariant> row;
        row.reserve(std::size_t(columns.size()));
        for (int c : columns)
            row.push_back(src[std::size_t(c)]);
        out.rows.push_back(std::move(row));
    }
    return out;
}

// The column of joinmdb that holds the external key: its name cut to ten
// characters, or the new name of the staged field it came from.
int externalKeyColumn(const DbfTable &ext, const QString &field, const QList<StagedField> &rows)
{
    const QString cut = field.left(kDbfMaxFieldNameLength);
    if (int c = ext.fieldIndex(cut); c >= 0)
        return c;
    for (const StagedField &r : rows)
        if (r.incluso && r.nomeCampo.left(kDbfMaxFieldNameLength).toUpper() == cut.toUpper())
            return ext.fieldIndex(r.outputName().left(kDbfMaxFieldNameLength));
    return -1;
}

// theme LEFT JOIN ext ON theme.key = ext.key, every column of both sides.
Result<DbfTable> leftJoin(const DbfTable &theme, int themeKey, const DbfTable &ext, int extKey)
{
    DbfTable out;
    out.encoding = theme.encoding;
    out.fields = theme.fields;
    for (const DbfField &f : ext.fields) {
        if (out.fieldIndex(f.name) >= 0)
            return joinError(JoinError::FieldExists);
        out.fields << f;
    }
    QHash<QString, QList<int>> index;
    for (size_t i = 0; i < ext.rows.size(); ++i)
        if (const QString k = keyOf(ext.rows[i][std::size_t(extKey)]); !k.isEmpty())
            index[k] << int(i);
    const std::vector<QVariant> nulls(std::size_t(ext.columnCount()));
    for (const auto &row : theme.rows) {
        const QList<int> matches = index.value(keyOf(row[std::size_t(themeKey)]));
        const int n = std::max<int>(1, int(matches.size()));
        for (int m = 0; m < n; ++m) {
            std::vector<QVariant> joined = row;
            const auto &add = matches.isEmpty() ? nulls : ext.rows[std::size_t(matches[m])];
            joined.insert(joined.end(), add.begin(), add.end());
            out.rows.push_back(std::move(joined));
        }
    }
    return out;
}

// The theme table and its .cpg as they were before the join.
struct Backup {
    QString dbf;
    QString cpg;
    QString themeDbf;
    QString themeCpg;
    bool hasCpg = false;
    bool taken = false;

    bool take()
    {
        hasCpg = QFileInfo::exists(themeCpg);
        taken = copyFileReplacing(themeDbf, dbf).ok() && (!hasCpg || copyFileReplacing(themeCpg, cpg).ok());
        return taken;
    }
    void restore() const
    {
        if (!taken)
            return;
        QFile::remove(themeDbf);
        QFile::rename(dbf, themeDbf);
        QFile::remove(themeCpg);
        if (hasCpg)
            QFile::rename(cpg, themeCpg);
    }
};

struct WorkFiles {
    QString sourceCopy;
    QString tempDbf;
    QString joinMdb;
    ~WorkFiles()
    {
        if (!sourceCopy.isEmpty())
            QFile::remove(sourceCopy);
        removeTable(joinMdb);
        if (!tempDbf.isEmpty())
            removeTable(tempDbf);
    }
};

}  // namespace

QString joinBackupPath(const QString &themeDbf)
{
    const QFileInfo info(themeDbf);
    return info.absolutePath() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".bak");
}

Result<JoinOutcome> Execute_Join(const ReferenceDb &db, const JoinRequest &request)
{
    // 1. The theme's table and folder.
    const QFileInfo shp(request.shapefilePath);
    const QString folder = shp.absolutePath();
    const QString themeTable = shp.suffix().compare(QLatin1String("shp"), Qt::CaseInsensitive) == 0 ||
                                       shp.suffix().compare(QLatin1String("dbf"), Qt::CaseInsensitive) == 0
                                   ? shp.completeBaseName()
                                   : shp.fileName();
    const QString themeDbf = tableIn(folder, themeTable);
    JoinOutcome outcome{themeTable, themeDbf, {}};

    WorkFiles work;
    work.joinMdb = folder + QStringLiteral("/joinmdb.dbf");

    // 2. A copy of a dBase or text source, so the source itself is never opened for writing.
    QString readFolder = request.sourceFolder;
    QString readFile = request.sourceFile;
    if (request.sourceType != JoinSourceType::Access) {
        readFile = request.sourceType == JoinSourceType::Text ? QStringLiteral("Copia.txt") : QStringLiteral("Copia.dbf");
        work.sourceCopy = request.sourceFolder + QLatin1Char('/') + readFile;
        const QString original = resolveCaseInsensitive(request.sourceFolder, request.sourceFile);
        if (!copyFileReplacing(original, work.sourceCopy))
            return joinError(JoinError::PathFailed);
        if (request.sourceType == JoinSourceType::DbaseIV) {
            const QString cpg = cpgPathFor(original);
            if (QFileInfo::exists(cpg))
                (void)copyFileReplacing(cpg, request.sourceFolder + QStringLiteral("/Copia.cpg"));
        }
    }

    // 3. Open the source and the staged column list.
    auto source = readSource(request.sourceType, readFolder, readFile, request.sourceTable);
    if (request.sourceType == JoinSourceType::DbaseIV)
        QFile::remove(request.sourceFolder + QStringLiteral("/Copia.cpg"));
    if (!source)
        return joinError(JoinError::SourceFailed);
    auto staged = readStaged(db, QStringLiteral("where (INCLUSO=-1 and collegatoAFile = ") + sqlQuote(themeTable) +
                                     QStringLiteral(")"));
    if (!staged)
        return joinError(JoinError::EngineError, staged.errorMessage());
    auto theme = readDbf(themeDbf);
    if (!theme)
        return joinError(JoinError::SourceFailed);

    // 4-5. Stale working tables out, the external table in as joinmdb.
    removeTable(tableIn(folder, QStringLiteral("temp")));
    removeTable(tableIn(folder, QStringLiteral("joinmdb")));
    auto ext = selectColumns(source.value(), staged.value());
    if (!ext)
        return ext.error();
    if (!writeDbf(work.joinMdb, ext.value()))
        return joinError(JoinError::LinkFailed);

    // 6. The left join into temp.
    const int themeKey = theme->fieldIndex(request.themeJoinField);
    const int extKey = externalKeyColumn(ext.value(), request.extJoinField, staged.value());
    if (themeKey < 0 || extKey < 0)
        return joinError(JoinError::SourceFailed);
    auto joined = leftJoin(theme.value(), themeKey, ext.value(), extKey);
    if (!joined)
        return joined.error();
    work.tempDbf = folder + QStringLiteral("/temp.dbf");
    if (!writeDbf(work.tempDbf, joined.value()))
        return joinError(JoinError::LinkFailed);

    // 7. A key that is not unique multiplies records: temp is dropped, the theme is untouched.
    if (joined->rowCount() != theme->rowCount())
        return joinError(JoinError::DuplicateKey);

    // 8. Backup of the theme table.
    Backup backup{joinBackupPath(themeDbf), joinBackupPath(themeDbf) + QStringLiteral(".cpg"), themeDbf,
                  cpgPathFor(themeDbf)};
    if (!backup.take())
        return joinError(JoinError::FileAccess);

    auto fail = [&](int code) -> Result<JoinOutcome> {
        backup.restore();
        static_cast<void>(db.execute(QStringLiteral("Delete * from CAMPIJOIN WHERE DBF=") + sqlQuote(themeTable)));
        return joinError(code);
    };

    // 9. One CAMPIJOIN row per added field.
    QStringList inserts;
    for (const DbfField &f : ext->fields) {
        outcome.addedFields << f.name;
        inserts << QStringLiteral("INSERT INTO CAMPIJOIN (DBF,CAMPOAGGIUNTO,INDICELAYER,PATH) VALUES ") +
                       QStringLiteral("('") + sqlEscape(themeTable) + QStringLiteral("', '") + sqlEscape(f.name) +
                       QStringLiteral("',") + QString::number(request.layerIndex) + QStringLiteral(", '") +
                       sqlEscape(folder) + QStringLiteral("' );");
    }
    if (!db.executeAll(inserts))
        return fail(JoinError::Bookkeeping);

    // 10. temp replaces the theme table, its .cpg with it.
    const QString tempCpg = cpgPathFor(work.tempDbf);
    const QString themeCpg = QFileInfo::exists(backup.themeCpg)
                                 ? backup.themeCpg
                                 : folder + QLatin1Char('/') + QFileInfo(themeDbf).completeBaseName() + QStringLiteral(".cpg");
    QFile::remove(themeDbf);
    QFile::remove(backup.themeCpg);
    if (!QFile::rename(work.tempDbf, themeDbf))
        return fail(JoinError::FileAccess);
    if (QFileInfo::exists(tempCpg) && !QFile::rename(tempCpg, themeCpg))
        return fail(JoinError::FileAccess);
    backup.themeCpg = themeCpg;
    work.tempDbf.clear();

    // 11. The join description.
    const QString table = request.sourceType == JoinSourceType::Access ? request.sourceTable : request.sourceFile;
    const Status listed = db.execute(
        QStringLiteral("INSERT INTO LISTAJOIN (PATHDB,NOMEDB,NOMETABELLA,CAMPOJOININT,CAMPOJOINEXT,SHPCOLLEGATO) VALUES ('") +
        sqlEscape(request.sourceFolder) + QStringLiteral("', '") + sqlEscape(request.sourceFile) + QStringLiteral("', '") +
        sqlEscape(table) + QStringLiteral("', '") + sqlEscape(request.themeJoinField) + QStringLiteral("', '") +
        sqlEscape(request.extJoinField) + QStringLiteral("', '") + sqlEscape(shp.fileName()) + QStringLiteral("');"));
    if (!listed)
        return fail(JoinError::Bookkeeping);
    return outcome;
}

int joinErrorStyle(const Error &error)
{
    switch (error.code) {
    case JoinError::SourceFailed:
    case JoinError::PathFailed: return MsgStyle::Information;
    case JoinError::EngineError:
    case JoinError::FieldExists: return MsgStyle::Exclamation;
    default: return MsgStyle::Critical;
    }
}

void showJoinError(const Error &error) { showMessage(joinErrorStyle(error), error.message); }

Result<JoinOutcome> runJoin(const ReferenceDb &db, const JoinRequest &request, const QString &iniPath,
                            const LayerState &layer)
{
    auto outcome = Execute_Join(db, request);
    if (!outcome)
        return outcome;
    if (Status st = rewriteAfterJoin(iniPath, layer, QFileInfo(request.shapefilePath).fileName(),
                                     outcome->addedFields, db);
        !st)
        return Result<JoinOutcome>::fail(st.errorMessage(), JoinError::FileAccess);
    return outcome;
}

}  // namespace mervola
