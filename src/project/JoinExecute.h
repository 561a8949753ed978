#pragma once
// Joining an external table to a theme's dBase table: the chosen external
// columns are brought beside the theme table as joinmdb.dbf, left-joined
// into temp.dbf, and temp.dbf replaces the theme table (same records in the
// same order, so the shapefile stays consistent). The theme table is backed
// up first and restored byte for byte when a later step fails. The join is
// recorded in CAMPIJOIN and LISTAJOIN, and the names the columns got in
// ALIASJOIN, so that re-running it from the settings gives the same columns.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "project/ReferenceDb.h"
#include "project/SettingsWriters.h"

#include <QStringList>
#include <functional>
#include <optional>

namespace mervola
{

// Error numbers of the join (the database engine's numbering) and the
// messages the user sees for them.
namespace JoinError
{
constexpr int SourceFailed = 3061; // the source cannot be opened or read
constexpr int PathFailed = 75;     // a file of the source cannot be copied
constexpr int EngineError = 3016;  // shown with its own description
constexpr int FieldExists = 3063;  // two joined columns get the same name
constexpr int LinkFailed = 3382;   // the joined table cannot be written
constexpr int FileAccess = 3051;   // a file of the theme cannot be replaced
constexpr int Bookkeeping = 3078;  // the reference database refused a row
constexpr int DuplicateKey = -1;   // the external key is not unique (own message)
} // namespace JoinError

namespace JoinText
{
inline const QString kJoinFailed = QStringLiteral("Collegamento con tabella esterna fallito.");
inline const QString kFieldExists = QStringLiteral("Campo di destinazione esistente");
inline const QString kLinkRestored = QStringLiteral(
    "Si è verificato un errore nel collegamento tra le tabelle. Il programma ripristinerà il Database di partenza.");
inline const QString kNotUnique = QStringLiteral("Impossibile collegare le tabelle.") + QStringLiteral("\r\n") +
                                  QStringLiteral("Valori non unici nel campo da collegare.");
inline const QString kCannotJoin = QStringLiteral("Imposibile eseguire collegamento.");
inline const QString kRestoreData =
    QStringLiteral("Impossibile collegare tabella.") + QStringLiteral("\r\n") + QStringLiteral("Ripristinare i dati.");
} // namespace JoinText

struct JoinRequest {
    QString shapefilePath; // the theme's shapefile (or its .dbf when the name has no ".shp")
    QString sourceType;    // JoinSourceType::Access, DbaseIV or Text
    QString sourceFolder;
    QString sourceFile;
    QString sourceTable; // the Access table; the file otherwise
    QString themeJoinField;
    QString extJoinField;
    int layerIndex = 0;
};

struct JoinOutcome {
    QString themeTable;      // base name of the theme table
    QString themeDbf;        // its path
    QStringList addedFields; // columns the join added, in table order
};

// The theme's settings file, rewritten as the last step of the join.
struct JoinSettingsFile {
    QString iniPath;
    LayerState layer;
};

// The steps of a join after which a failure must leave everything as it was.
enum class JoinStep {
    CopySource,   // working copy of a dBase or text source made
    ReadSource,   // source and staged rows read
    WriteJoinMdb, // joinmdb.dbf written beside the theme table
    WriteTemp,    // temp.dbf written
    Backup,       // backup of the theme table taken
    CampiJoin,    // CAMPIJOIN rows inserted
    ReplaceTable, // temp.dbf took the theme table's place
    ListaJoin,    // LISTAJOIN row inserted
    Settings,     // settings file rewritten
};
inline constexpr JoinStep kLastJoinStep = JoinStep::Settings;

// A test hook asked after each step: true makes the join fail there as if
// the step itself had failed. An empty function removes it.
using JoinFailureHook = std::function<bool(JoinStep)>;
void setJoinFailureHook(JoinFailureHook hook);

// Runs the join. The staged rows (STRUCTJOIN, INCLUSO = -1, COLLEGATOAFILE =
// the theme table) choose and name the columns. The bookkeeping rows are
// written in one transaction of the reference database that is committed
// only when every step, the settings rewrite included, has succeeded. On
// failure the error holds the message to show and its number, and the theme
// table, its settings file and the reference database are as before, byte
// for byte; the source file is only ever read.
Result<JoinOutcome> Execute_Join(const ReferenceDb &db, const JoinRequest &request,
                                 const std::optional<JoinSettingsFile> &settings = std::nullopt);

// The message-box style of a join error (critical, information ...).
int joinErrorStyle(const Error &error);
void showJoinError(const Error &error);

// Execute_Join with the rewrite of the theme's settings file.
Result<JoinOutcome> runJoin(const ReferenceDb &db, const JoinRequest &request, const QString &iniPath,
                            const LayerState &layer);

// Backup file of a theme table: the table name + ".bak" in its folder.
QString joinBackupPath(const QString &themeDbf);

} // namespace mervola
