#include "project/JoinTheme.h"

#include "platform/Messages.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfTable.h"
#include "map/MapModel.h"
#include "project/JoinSource.h"
#include "project/JoinStaging.h"
#include "project/PristineSettings.h"
#include "project/ThemeSettings.h"

#include <QFile>
#include <algorithm>
#include <QFileInfo>

namespace mervola {

QString sourceTypeOfFile(const QString &fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("mdb") || suffix == QLatin1String("accdb"))
        return JoinSourceType::Access;
    if (suffix == QLatin1String("txt") || suffix == QLatin1String("csv"))
        return JoinSourceType::Text;
    return JoinSourceType::DbaseIV;
}

Result<JoinOutcome> rejoinTheme(const AtlasHome &home, const LoadedTheme &theme, int layerIndex)
{
    const JoinFields &j = theme.settings.join;
    const QString type = sourceTypeOfFile(j.nomeDb);
    const QString sourcePath = resolveCaseInsensitive(j.pathDb, j.nomeDb);
    auto source = readSource(type, QString(), sourcePath, j.nomeTabella);
    if (!source)
        return Result<JoinOutcome>::fail(JoinText::kSourceUnreadable, JoinError::SourceFailed);

    const QFileInfo shp(theme.shapefilePath);
    const QString themeTable = shp.completeBaseName();
    auto table = readDbf(resolveCaseInsensitive(shp.absolutePath(), themeTable + QStringLiteral(".dbf")));
    if (!table)
        return Result<JoinOutcome>::fail(JoinText::kJoinFailed, JoinError::SourceFailed);
    QStringList themeFields;
    for (const DbfField &f : table->fields)
        themeFields << f.name;

    const StagingContext context{type, j.pathDb, j.nomeDb, shp.absolutePath(), themeTable};
    QList<StagedField> rows = stagedRowsFor(context, source->fields, themeFields);
    const QString key = j.campoJoinExt.left(kDbfMaxFieldNameLength).toUpper();
    // The stored list names the added columns; an alias given in the wizard
    // is not stored, so when a listed name matches no source field every
    // field is brought back under its own name.
    QStringList wanted = theme.settings.structJoin;
    for (const QString &name : std::as_const(wanted)) {
        const bool found = std::any_of(rows.cbegin(), rows.cend(), [&](const StagedField &r) {
            return r.outputName().compare(name, Qt::CaseInsensitive) == 0 ||
                   r.nomeCampo.compare(name, Qt::CaseInsensitive) == 0;
        });
        if (!found) {
            wanted.clear();
            break;
        }
    }
    for (StagedField &r : rows) {
        const bool listed = wanted.contains(r.outputName(), Qt::CaseInsensitive) ||
                            wanted.contains(r.nomeCampo, Qt::CaseInsensitive);
        const bool isKey = r.nomeCampo.left(kDbfMaxFieldNameLength).toUpper() == key;
        r.incluso = (wanted.isEmpty() || listed || isKey) && isImportable(r.tipoCampo);
    }
    const ReferenceDb db(home);
    if (Status st = stageFields(db, rows); !st)
        return Result<JoinOutcome>::fail(st.errorMessage(), JoinError::SourceFailed);

    JoinRequest request;
    request.shapefilePath = theme.shapefilePath;
    request.sourceType = type;
    request.sourceFolder = j.pathDb;
    request.sourceFile = QFileInfo(sourcePath).fileName();
    request.sourceTable = j.nomeTabella;
    request.themeJoinField = j.campoJoinInt;
    request.extJoinField = j.campoJoinExt;
    request.layerIndex = layerIndex;
    return Execute_Join(db, request);
}

std::function<Status(const LoadedTheme &)> makeRejoinHook(const AtlasHome &home)
{
    return [home](const LoadedTheme &theme) -> Status {
        if (auto outcome = rejoinTheme(home, theme); !outcome)
            showJoinError(outcome.error());
        return {};
    };
}

namespace {

Status restoreFile(const QString &from, const QString &to)
{
    if (Status st = copyFileReplacing(from, to); !st)
        return Status::fail(JoinText::kRestoreData);
    return {};
}

}  // namespace

Status removeJoin(const AtlasHome &home, const QString &shapefilePath, const QString &iniPath)
{
    const QFileInfo shp(shapefilePath);
    const QString table = shp.completeBaseName();
    const QString folder = shp.absolutePath();
    const ReferenceDb db(home);
    if (Status st = db.executeAll({QStringLiteral("Delete * from CAMPIJOIN WHERE DBF=") + sqlQuote(table.toUpper()),
                                   QStringLiteral("Delete * from LISTAJOIN WHERE SHPCOLLEGATO=") + sqlQuote(shp.fileName())});
        !st)
        return st;

    const QString themeDbf = resolveCaseInsensitive(folder, table + QStringLiteral(".dbf"));
    const QString backup = joinBackupPath(themeDbf);
    const QString backupCpg = backup + QStringLiteral(".cpg");
    const QString pristine = resolveCaseInsensitive(home.originali(), table + QStringLiteral(".dbf"));
    if (QFileInfo::exists(pristine)) {
        if (Status st = restoreFile(pristine, themeDbf); !st)
            return st;
        const QString pristineCpg = cpgPathFor(pristine);
        if (QFileInfo::exists(pristineCpg))
            if (Status st = restoreFile(pristineCpg, cpgPathFor(themeDbf)); !st)
                return st;
        if (table.toUpper() == QLatin1String("COMMONT")) {
            const QString combase = resolveCaseInsensitive(home.originali(), QStringLiteral("combase.dbf"));
            if (QFileInfo::exists(combase))
                if (Status st = restoreFile(combase, resolveCaseInsensitive(folder, QStringLiteral("combase.dbf"))); !st)
                    return st;
        }
    } else if (QFileInfo::exists(backup)) {
        if (Status st = restoreFile(backup, themeDbf); !st)
            return st;
        if (QFileInfo::exists(backupCpg))
            if (Status st = restoreFile(backupCpg, cpgPathFor(themeDbf)); !st)
                return st;
    }
    QFile::remove(backup);
    QFile::remove(backupCpg);

    if (!iniPath.isEmpty() && QFileInfo::exists(iniPath))
        return updateThemeKeys(iniPath, QFileInfo(iniPath).completeBaseName(),
                               {{ThemeKey::Join, JoinFields().format()}, {ThemeKey::StructJoin, QStringLiteral("*^")}});
    return {};
}

Status reloadLayerAttributes(map::MapModel &model, const QString &layerName)
{
    map::MapLayer *layer = model.find(layerName);
    if (!layer || !layer->data)
        return Status::fail(QStringLiteral("Tema non trovato: ") + layerName);
    auto data = map::LayerData::loadShapefile(layer->data->sourcePath);
    if (!data)
        return data.error();
    layer->data = data.value();
    return {};
}

}  // namespace mervola
