#pragma once
// The join wizard's logic: file-name checks, the staging of an external
// table's fields in STRUCTJOIN, alias and type checks, the field-count limit,
// the summary sentence and the column list of the join (PrepareSelect).

#include "platform/Result.h"
#include "project/JoinSource.h"
#include "project/ReferenceDb.h"

#include <QList>
#include <QStringList>

namespace mervola {

struct StructureTable;

namespace JoinText {
inline const QString kCrLf = QStringLiteral("\r\n");
inline const QString kBadCharacters =
    QStringLiteral("Il nome del file contiene caratteri non ammessi. Rinominare il file e riprovare.");
inline const QString kChooseTable = QStringLiteral("Selezionare una tabella.");
inline const QString kNoTextField =
    QStringLiteral("Impossibile collegare la tabella. Non ci sono campi di tipo alfanumerico.");
inline const QString kUnknownFormat = QStringLiteral("Formato dati non previsto.");
inline const QString kSourceUnreadable = QStringLiteral("Impossibile leggere il file di origine.") + kCrLf +
                                         QStringLiteral("Verificare che il formato di tutti i campi della tabella di origine sia supportato.");
inline const QString kUnsupportedIncluded =
    QStringLiteral("La tabella esterna contiene campi che non possono essere importati.") + kCrLf +
    QStringLiteral("Verificare il formato dei campi supportati.");
inline const QString kNameTooLong = QStringLiteral("La lunghezza del nome del campo non può superare i 10 caratteri.");
inline const QString kTooManyFields = QStringLiteral("Impossibile collegare la tabella. Il numero di campi supera 255.");
inline const QString kAliasUnique = QStringLiteral("L'alias deve essere univoco.");
inline const QString kAllResolved = QStringLiteral("Tutti i conflitti sono risolti.");
inline const QString kAliasCharacters = QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789_");
}  // namespace JoinText

// One row of STRUCTJOIN.
struct StagedField {
    bool incluso = true;
    QString nomeCampo;
    QString aliasCampo;
    int tipoCampo = JoinFieldType::Text;
    QString strTipoCampo;
    bool conflitto = false;
    QString nomeConflitto;
    QString path;            // source folder
    QString file;            // source file
    QString tipoFonte;       // source type text
    QString collegatoAPath;  // theme folder
    QString collegatoAFile;  // theme table (shapefile base name)

    // The name the column gets in the joined table.
    QString outputName() const;
};

// Where the staged fields come from and which theme table they go to.
struct StagingContext {
    QString sourceType;
    QString sourceFolder;
    QString sourceFile;
    QString themeFolder;
    QString themeTable;
};

// Characters that no file name may hold.
bool hasForbiddenFileCharacters(const QString &fileName);
// dBase and text sources: at most 8 characters before the extension.
Status checkSourceFileName(const QString &sourceType, const QString &fileName);

// The STRUCTJOIN rows for a source, conflicts with the theme's fields marked;
// the fields a dBase table cannot hold start excluded.
QList<StagedField> stagedRowsFor(const StagingContext &context, const QList<SourceField> &fields,
                                 const QStringList &themeFields);
QString structJoinInsert(const StagedField &row);
// Clears STRUCTJOIN and inserts the rows; fails when no field is alphanumeric.
Status stageFields(const ReferenceDb &db, const QList<StagedField> &rows);
Result<QList<StagedField>> readStaged(const ReferenceDb &db, const QString &where = {});
// Writes back the include flags, aliases and conflict names of the rows.
Status updateStaged(const ReferenceDb &db, const QList<StagedField> &rows);

// Checks a new alias for row `row` against the others and the structure table.
Status validateAlias(const QString &alias, int row, const QList<StagedField> &rows, const StructureTable &structure);
// The checks of the second step's "next".
Status checkIncludedFields(const QList<StagedField> &rows);
// Theme fields plus included fields may be at most 255.
Status checkFieldCount(int themeFieldCount, int includedCount);
QString joinSummary(const QString &extTable, const QString &themeTable, const QString &extField,
                    const QString &themeField);

// Rows still carrying the automatic "z" + name (shown in the conflict window).
bool isUnresolvedConflict(const StagedField &row);

// "SELECT a, [b] AS [c] , d AS [zd] " for the included rows of a theme table.
QString prepareSelect(const QList<StagedField> &rows);
Result<QString> PrepareSelect(const ReferenceDb &db, const QString &themeFile);

}  // namespace mervola
