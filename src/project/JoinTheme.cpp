#include "project/JoinTheme.h"

#include "platform/KillPoint.h"
#include "platform/Messages.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfTable.h"
#include "map/MapModel.h"
#include "project/JoinFiles.h"
#include "project/JoinNames.h"
#include "project/JoinSource.h"
#include "project/JoinStaging.h"
#include "project/PristineSettings.h"
#include "project/ThemeSettings.h"

#include <QDir>
#include <QFile>
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

Result<ThemeOnDisk> themeOnDisk(const AtlasHome &home, const QString &themeName)
{
    const QString ini = resolveCaseInsensitive(home.supporto(), themeName + QStringLiteral(".ini"));
    if (!QFileInfo::exists(ini))
        return Result<ThemeOnDisk>::fail(QStringLiteral("Tema non trovato: ") + themeName);
    const ThemeSettings s = readThemeSettingsFile(ini, themeName);
    QString folder = QString(s.workspace).replace(QLatin1Char('\\'), QLatin1Char('/'));
    const QString shapefile = s.shapefile.isEmpty() ? themeName + QStringLiteral(".shp") : s.shapefile;
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = home.italia();
    ThemeOnDisk t;
    t.iniPath = ini;
    t.shapefilePath = resolveCaseInsensitive(QDir::cleanPath(folder), shapefile);
    const QFileInfo shp(t.shapefilePath);
    if (!QFileInfo::exists(resolveCaseInsensitive(shp.absolutePath(), shp.completeBaseName() + QStringLiteral(".dbf"))))
        return Result<ThemeOnDisk>::fail(QStringLiteral("Tabella del tema non trovata: ") + t.shapefilePath);
    t.layer.name = themeName;
    t.layer.folder = shp.absolutePath();
    t.layer.baseName = shp.completeBaseName();
    t.layer.symbol = s.symbol;
    t.layer.outline = s.outline;
    t.layer.visible = s.visible;
    t.layer.labelsOn = s.labelsOn();
    t.layer.labelField = s.labelField;
    return t;
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
    const QStringList themeFields =
        dbfFieldNames(resolveCaseInsensitive(shp.absolutePath(), themeTable + QStringLiteral(".dbf")));
    if (themeFields.isEmpty())
        return Result<JoinOutcome>::fail(JoinText::kJoinFailed, JoinError::SourceFailed);

    const StagingContext context{type, j.pathDb, j.nomeDb, shp.absolutePath(), themeTable};
    QList<StagedField> rows = stagedRowsFor(context, source->fields, themeFields);
    const ReferenceDb db(home);
    chooseRejoinColumns(rows, theme.settings.structJoin, recordedColumnNames(db, j), j.campoJoinExt);
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

// The table a removal copies back: the pristine copy, else the backup.
QString restoreSourceOf(const AtlasHome &home, const QString &table, const QString &backup)
{
    const QString pristine = resolveCaseInsensitive(home.originali(), table + QStringLiteral(".dbf"));
    if (QFileInfo::exists(pristine))
        return pristine;
    return QFileInfo::exists(backup) ? backup : QString();
}

// The cpg that goes with a restore source (backups keep theirs as ".bak.cpg").
QString cpgOfRestoreSource(const QString &source)
{
    return source.endsWith(QLatin1String(".bak")) ? source + QStringLiteral(".cpg") : cpgPathFor(source);
}

Status restoreFile(FileRollback &files, const QString &from, const QString &to)
{
    if (!files.keep(to) || !copyFileReplacing(from, to))
        return Status::fail(JoinText::kRestoreData);
    return {};
}

// Settings of a theme whose join is gone: no join, and no classification on
// a column that left with it (the plain symbol is drawn again).
QList<QPair<ThemeKey, QString>> settingsAfterRemoval(const ThemeSettings &s, const QStringList &joinedColumns)
{
    QList<QPair<ThemeKey, QString>> values{{ThemeKey::Join, JoinFields().format()},
                                           {ThemeKey::StructJoin, QStringLiteral("*^")}};
    const bool classified = s.has(ThemeKey::TipoClassificazione) && s.classificationType != QLatin1String("0");
    if (classified && joinedColumns.contains(s.campo.field, Qt::CaseInsensitive)) {
        values.append({ThemeKey::TipoClassificazione, QStringLiteral("0")});
        values.append({ThemeKey::Campo, QStringLiteral("0^0^0^0^")});
        values.append({ThemeKey::Classificazione, QStringLiteral("0")});
    }
    return values;
}

}  // namespace

bool themeHasJoin(const AtlasHome &home, const QString &shapefilePath, const QString &iniPath)
{
    const QFileInfo shp(shapefilePath);
    const ReferenceDb db(home);
    auto rows = db.query(QStringLiteral("Select distinct DBF from CAMPIJOIN WHERE DBF=") +
                         sqlQuote(shp.completeBaseName().toUpper()));
    if (rows && !rows->empty())
        return true;
    if (!iniPath.isEmpty() && readThemeSettingsFile(iniPath, QFileInfo(iniPath).completeBaseName()).join.isSet())
        return true;
    return QFileInfo::exists(joinBackupPath(resolveCaseInsensitive(shp.absolutePath(), shp.completeBaseName() +
                                                                                           QStringLiteral(".dbf"))));
}

Status removeJoin(const AtlasHome &home, const QString &shapefilePath, const QString &iniPath)
{
    const QFileInfo shp(shapefilePath);
    const QString table = shp.completeBaseName();
    const QString folder = shp.absolutePath();
    const QString themeDbf = resolveCaseInsensitive(folder, table + QStringLiteral(".dbf"));
    const QString backup = joinBackupPath(themeDbf);
    const ReferenceDb db(home);

    // Every column any join added to this table, before its rows go.
    QStringList joinedColumns;
    if (auto rows = db.query(QStringLiteral("Select * from CAMPIJOIN WHERE DBF=") + sqlQuote(table.toUpper())))
        for (size_t i = 0; i < rows->size(); ++i)
            joinedColumns << rows->value(i, QStringLiteral("CAMPOAGGIUNTO")).toString();
    const QString section = QFileInfo(iniPath).completeBaseName();
    const ThemeSettings settings = iniPath.isEmpty() ? ThemeSettings() : readThemeSettingsFile(iniPath, section);
    joinedColumns << settings.structJoin;

    // The database is kept as a file before its transaction opens (and the
    // transaction ends before the files are put back on failure).
    FileRollback files;
    if (!files.keep(db.path()))
        return Status::fail(JoinText::kRestoreData);
    auto tx = db.open();
    if (!tx || !tx->begin())
        return Status::fail(JoinText::kRestoreData);
    for (const QString &sql : {QStringLiteral("Delete * from CAMPIJOIN WHERE DBF=") + sqlQuote(table.toUpper()),
                               QStringLiteral("Delete * from LISTAJOIN WHERE SHPCOLLEGATO=") + sqlQuote(shp.fileName())}) {
        if (!tx->run(ReferenceDb::toSqlite(sql)))
            return Status::fail(JoinText::kRestoreData);
        killPoint();
    }

    if (const QString from = restoreSourceOf(home, table, backup); !from.isEmpty()) {
        if (Status st = restoreFile(files, from, themeDbf); !st)
            return st;
        if (const QString cpg = cpgOfRestoreSource(from); QFileInfo::exists(cpg))
            if (Status st = restoreFile(files, cpg, cpgPathFor(themeDbf)); !st)
                return st;
        const QString combase = resolveCaseInsensitive(home.originali(), QStringLiteral("combase.dbf"));
        if (table.toUpper() == QLatin1String("COMMONT") && QFileInfo::exists(combase))
            if (Status st = restoreFile(files, combase, resolveCaseInsensitive(folder, QStringLiteral("combase.dbf")));
                !st)
                return st;
    }
    if (!iniPath.isEmpty() && QFileInfo::exists(iniPath)) {
        if (!files.keep(iniPath))
            return Status::fail(JoinText::kRestoreData);
        if (Status st = updateThemeKeys(iniPath, section, settingsAfterRemoval(settings, joinedColumns)); !st)
            return st;
    }
    files.discardOnCommit(backup);
    files.discardOnCommit(backup + QStringLiteral(".cpg"));
    if (!tx->commit())
        return Status::fail(JoinText::kRestoreData);
    killPoint();
    tx->close();
    files.commit();
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
