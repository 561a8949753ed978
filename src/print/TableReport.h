#pragma once
// The table report: the rows of an attribute table are copied into the work
// table TempRpt of the reference database and a report definition
// dati/TempRpt.vrd is written; the report renderer (ReportDocument.h) reads
// both back and paints the pages.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "platform/Sqlite.h"

#include <QStringList>
#include <functional>

namespace mervola
{

class ReferenceDb;

namespace reporttext
{
inline const QString kPreviewCaption = QStringLiteral("Anteprima di stampa tabella");
inline const QString kCloseReferenceDb =
    QStringLiteral("Per continuare è necessario chiudere il database di appoggio.");
inline const QString kSetup = QStringLiteral("Setup stampante");
inline const QString kPrint = QStringLiteral("Stampa");
inline const QString kExit = QStringLiteral("Uscita");
inline const QString kNoPrinter =
    QStringLiteral("Non è installata alcuna stampante. Impossibile visualizzare il preview di stampa");
inline const QString kWriteFailed = QStringLiteral("Impossibile scrivere la definizione della stampa: %1");
inline const QString kNoDefinition = QStringLiteral("Definizione della stampa non trovata: %1");
inline const QString kCancelled = QStringLiteral("Stampa annullata.");
// page number + " di " + page count
QString pageIndicator(int page, int pageCount);
} // namespace reporttext

inline const QString kReportTable = QStringLiteral("TempRpt");

// One printed column: the field's name in TempRpt and the header caption.
struct ReportColumn {
    QString field;
    QString title;
};

// 0 portrait, 1 landscape (the number written after "Orientation = ").
enum class ReportOrientation { Portrait = 0, Landscape = 1 };

// The definition's lines in order, every section ended by an empty line.
// `databasePath` is the reference database, `styleLines` the lines of
// supporto/stili.ini, copied as they stand.
QStringList reportDefinitionLines(const QString &databasePath, const QList<ReportColumn> &columns,
                                  const QStringList &styleLines);

// dati/TempRpt.vrd and dati/TempRptNew.vrd of a home (an existing file is
// matched without regard to case).
QString reportDefinitionPath(const AtlasHome &home);
QString reportDefinitionNewPath(const AtlasHome &home);

// Writes dati/TempRpt.vrd for the columns (through TempRptNew.vrd, so that
// a failed write leaves the previous definition).
Status writeReportDefinition(const AtlasHome &home, const QList<ReportColumn> &columns);

// Copies the definition to TempRptNew.vrd with the "Orientation = " line
// replaced, deletes TempRpt.vrd and gives the new file its name.
Status setReportOrientation(const AtlasHome &home, ReportOrientation orientation);

// Called with the work done so far and the whole; returns false to stop.
using ReportProgress = std::function<bool(int done, int total)>;

// Recreates TempRpt with one text column per field and inserts the rows,
// in their order. When the reference database cannot be changed the error
// is reporttext::kCloseReferenceDb; a stop asked by `progress` is
// reporttext::kCancelled.
Status fillTempRpt(const ReferenceDb &db, const QStringList &fields, const std::vector<QStringList> &rows,
                   const ReportProgress &progress = {});

// The whole print preparation of the attribute window's rows (as shown,
// in its order): rows into TempRpt, then the definition.
Status prepareTableReport(const AtlasHome &home, const QList<ReportColumn> &columns,
                          const std::vector<QStringList> &rows, const ReportProgress &progress = {});

} // namespace mervola
