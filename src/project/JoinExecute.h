#pragma once
// Joining an external table to a theme's dBase table: the chosen external
// columns are brought beside the theme table as joinmdb.dbf, left-joined
// into temp.dbf, and temp.dbf replaces the theme table (same records in the
// same order, so the shapefile stays consistent). The theme table is backed
// up first and restored byte for byte when a later step fails. The join is
// recorded in CAMPIJOIN and LISTAJOIN.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "project/ReferenceDb.h"
#include "project/SettingsWriters.h"

#include <QStringList>

namespace mervola {

// Error numbers of the join (the database engine's numbering) and the
// messages the user sees for them.
namespace JoinError {
constexpr int SourceFailed = 3061;   // the source cannot be opened or read
constexpr int PathFailed = 75;       // a file of the source cannot be copied
constexpr int EngineError = 3016;    // shown with its own description
constexpr int FieldExists = 3063;    // two joined columns get the same name
constexpr int LinkFailed = 3382;     // the joined table cannot be written
constexpr int FileAccess = 3051;     // a file of the theme cannot be replaced
constexpr int Bookkeeping = 3078;    // the reference database refused a row
constexpr int DuplicateKey = -1;     // the external key is not unique (own message)
}  // namespace JoinError

namespace JoinText {
inline const QString kJoinFailed = QStringLiteral("Collegamento con tabella esterna fallito.");
inline const QString kFieldExists = QStringLiteral("Campo di destinazione esistente");
inline const QString kLinkRestored = QStringLiteral(
    "Si è verificato un errore nel collegamento tra le tabelle. Il programma ripristinerà il Database di partenza.");
inline const QString kNotUnique = QStringLiteral("Impossibile collegare le tabelle.") + QStringLiteral("\r\n") +
                                  QStringLiteral("Valori non unici nel campo da collegare.");
inline const QString kCannotJoin = QStringLiteral("Imposibile eseguire collegamento.");
inline const QString kRestoreData =
    QStringLiteral("Impossibile collegare tabella.") + QStringLiteral("\r\n") + QStringLiteral("Ripristinare i dati.");
}  // namespace JoinText

struct JoinRequest {
    QString shapefilePath;  // the theme's shapefile (or its .dbf when the name has no ".shp")
    QString sourceType;     // JoinSourceType::Access, DbaseIV or Text
    QString sourceFolder;
    QString sourceFile;
    QString sourceTable;    // the Access table; the file otherwise
    QString themeJoinField;
    QString extJoinField;
    int layerIndex = 0;
};

struct JoinOutcome {
    QString themeTable;        // base name of the theme table
    QString themeDbf;          // its path
    QStringList addedFields;   // columns the join added, in table order
};

// Runs the join. The staged rows (STRUCTJOIN, INCLUSO = -1, COLLEGATOAFILE =
// the theme table) choose and name the columns. On failure the error holds
// the message to show and its number; the theme table is as before.
Result<JoinOutcome> Execute_Join(const ReferenceDb &db, const JoinRequest &request);

// The message-box style of a join error (critical, information ...).
int joinErrorStyle(const Error &error);
void showJoinError(const Error &error);

// Execute_Join followed by the rewrite of the theme's settings file.
Result<JoinOutcome> runJoin(const ReferenceDb &db, const JoinRequest &request, const QString &iniPath,
                            const LayerState &layer);

// Backup file of a theme table: the table name + ".bak" in its folder.
QString joinBackupPath(const QString &themeDbf);

}  // namespace mervola
