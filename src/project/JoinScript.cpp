#include "project/JoinScript.h"

#include "platform/dbf/DbfTable.h"
#include "project/JoinFiles.h"
#include "project/JoinStaging.h"
#include "project/JoinTheme.h"
#include "project/StructureTable.h"

#include <QFileInfo>

#include <algorithm>

namespace mervola
{

namespace
{

int rowOf(const QList<StagedField> &rows, const QString &field)
{
    for (int i = 0; i < rows.size(); ++i)
        if (rows[i].nomeCampo.compare(field, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

bool validAlias(const QString &alias)
{
    if (alias.isEmpty() || alias.size() > kDbfMaxFieldNameLength)
        return false;
    return std::all_of(alias.cbegin(), alias.cend(), [](QChar c) { return JoinText::kAliasCharacters.contains(c); });
}

// The include flags and aliases of "FIELD" / "FIELD=alias" items.
Status chooseFields(QList<StagedField> &rows, const QStringList &items, const StructureTable &structure)
{
    if (items.isEmpty())
        return {};
    for (StagedField &r : rows)
        r.incluso = false;
    for (const QString &item : items) {
        const QString field = item.section(QLatin1Char('='), 0, 0).trimmed();
        const QString alias = item.contains(QLatin1Char('=')) ? item.section(QLatin1Char('='), 1).trimmed() : QString();
        const int i = rowOf(rows, field);
        if (i < 0)
            return Status::fail(JoinScriptText::kNoSourceField.arg(field));
        rows[i].incluso = true;
        if (alias.isEmpty() || alias == rows[i].aliasCampo)
            continue;
        if (!validAlias(alias))
            return Status::fail(JoinScriptText::kBadAlias.arg(alias));
        if (Status st = validateAlias(alias, i, rows, structure); !st)
            return st;
        rows[i].aliasCampo = alias;
    }
    return {};
}

// A theme field named directly, or by its name in STRUTTURE.
QString themeField(const QString &key, const QString &table, const QStringList &themeFields,
                   const StructureTable &structure)
{
    for (const QString &f : themeFields)
        if (f.compare(key, Qt::CaseInsensitive) == 0)
            return f;
    for (const StructureRow &r : structure.rows)
        if (r.tabella.compare(table, Qt::CaseInsensitive) == 0 && r.alias.compare(key, Qt::CaseInsensitive) == 0)
            return r.label;
    return {};
}

Result<JoinOutcome> stageAndJoin(const AtlasHome &home, const ScriptedJoin &join)
{
    auto theme = themeOnDisk(home, join.theme);
    if (!theme)
        return theme.error();
    const QFileInfo src(join.source);
    if (!src.isFile())
        return Result<JoinOutcome>::fail(JoinScriptText::kNoFile.arg(join.source));
    const QString type = sourceTypeOfFile(src.fileName());
    if (hasForbiddenFileCharacters(src.fileName()))
        return Result<JoinOutcome>::fail(JoinText::kBadCharacters);
    if (Status st = checkSourceFileName(type, src.fileName()); !st)
        return st.error();
    if (type == JoinSourceType::Access) {
        if (join.table.isEmpty())
            return Result<JoinOutcome>::fail(JoinText::kChooseTable);
        auto tables = accessTableNames(src.absoluteFilePath());
        if (!tables)
            return Result<JoinOutcome>::fail(JoinText::kSourceUnreadable, JoinError::SourceFailed);
        if (!tables->contains(join.table))
            return Result<JoinOutcome>::fail(JoinScriptText::kNoTable.arg(join.table));
    }
    const QString table = type == JoinSourceType::Access ? join.table : src.fileName();
    auto source = readSource(type, src.absolutePath(), src.fileName(), table);
    if (!source)
        return Result<JoinOutcome>::fail(JoinText::kSourceUnreadable, JoinError::SourceFailed);

    const QFileInfo shp(theme->shapefilePath);
    const QStringList themeFields =
        dbfFieldNames(resolveCaseInsensitive(shp.absolutePath(), shp.completeBaseName() + QStringLiteral(".dbf")));
    if (themeFields.isEmpty())
        return Result<JoinOutcome>::fail(JoinText::kJoinFailed, JoinError::SourceFailed);

    const ReferenceDb db(home);
    const StructureTable structure = readStructureTable(db).valueOr({});
    const StagingContext context{type, src.absolutePath(), src.fileName(), shp.absolutePath(), shp.completeBaseName()};
    QList<StagedField> rows = stagedRowsFor(context, source->fields, themeFields);
    if (Status st = chooseFields(rows, join.fields, structure); !st)
        return st.error();
    const int key = rowOf(rows, join.sourceKey);
    if (key < 0)
        return Result<JoinOutcome>::fail(JoinScriptText::kNoSourceField.arg(join.sourceKey));
    if (familyOfType(rows[key].tipoCampo) != FieldFamily::Alphanumeric)
        return Result<JoinOutcome>::fail(JoinScriptText::kKeyNotText.arg(join.sourceKey));
    rows[key].incluso = true;
    const QString themeKey = themeField(join.themeKey, shp.completeBaseName(), themeFields, structure);
    if (themeKey.isEmpty())
        return Result<JoinOutcome>::fail(JoinScriptText::kNoThemeField.arg(join.themeKey));

    if (Status st = stageFields(db, rows); !st)
        return st.error();
    if (Status st = checkIncludedFields(rows); !st)
        return st.error();
    const int included = int(std::count_if(rows.cbegin(), rows.cend(), [](const StagedField &r) { return r.incluso; }));
    if (Status st = checkFieldCount(int(themeFields.size()), included); !st)
        return st.error();

    JoinRequest request;
    request.shapefilePath = theme->shapefilePath;
    request.sourceType = type;
    request.sourceFolder = src.absolutePath();
    request.sourceFile = src.fileName();
    request.sourceTable = table;
    request.themeJoinField = themeKey;
    request.extJoinField = rows[key].nomeCampo;
    return runJoin(db, request, theme->iniPath, theme->layer);
}

} // namespace

Result<JoinOutcome> runScriptedJoin(const AtlasHome &home, const ScriptedJoin &join)
{
    // Staging writes STRUCTJOIN before the join: a refusal puts the whole
    // reference database back.
    FileRollback files;
    if (Status st = files.keep(home.referenceDb()); !st)
        return st.error();
    auto outcome = stageAndJoin(home, join);
    if (outcome)
        files.commit();
    return outcome;
}

Status runScriptedUnjoin(const AtlasHome &home, const QString &theme)
{
    auto t = themeOnDisk(home, theme);
    if (!t)
        return t.error();
    if (!themeHasJoin(home, t->shapefilePath, t->iniPath))
        return Status::fail(JoinScriptText::kNoJoin.arg(theme));
    return removeJoin(home, t->shapefilePath, t->iniPath);
}

} // namespace mervola
