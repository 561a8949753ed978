#pragma once
// Captions and messages of the attribute table window and its table query.

#include <QString>

namespace mervola::texts {

inline const QString kCaptionPrefix = QStringLiteral("Tabella ");
inline const QString kJoinedSuffix = QStringLiteral(" (collegata con dati esterni)");
inline const QString kCtrlHint = QStringLiteral("Premere CTRL per selezionare più elementi");
inline const QString kNoPrinter =
    QStringLiteral("Non è installata alcuna stampante. Impossibile visualizzare il preview di stampa");
inline const QString kExportTitle = QStringLiteral("Esporta tabella");
inline const QString kExportFilter = QStringLiteral("Formato dbf (*.dbf)");
inline const QString kExported = QStringLiteral("File esportato con successo in ");
inline const QString kExportOverSource =
    QStringLiteral("Impossibile esportare la tabella sul file della tabella aperta.");
inline const QString kNothingOnMap = QStringLiteral("Nessun elemento valido su cui fare la ricerca");
inline const QString kNoColumn = QStringLiteral("Nessuna colonna selezionata.");
inline const QString kNotAvailable = QStringLiteral("Funzione non ancora disponibile in questa versione.");

// Table query
inline const QString kQueryCaption = QStringLiteral("Query builder");
inline const QString kChooseField = QStringLiteral("E' necessario selezionare un campo dalla lista!");
inline const QString kNoValidQuery = QStringLiteral("Nessuna query valida.");
inline const QString kNoRecordFound = QStringLiteral("Nessun record trovato.");
inline const QString kQuerySyntax = QStringLiteral("Errore di sintassi nella query.");
inline const QString kOriginalName = QStringLiteral("Nome originale del campo:");

}  // namespace mervola::texts
