#pragma once
// frmStampaTabella: the preview of the table report, page by page, with the
// printer set-up, the orientation, printing and saving as PDF. Without a
// printer the preview still opens: printing is disabled and saving as PDF
// is what the user can do.
//
// Wiring (attribute table window, "stampa"): openTableReport(parent, home,
// columns, rows, printerAvailable) fills TempRpt with the window's rows,
// writes dati/TempRpt.vrd and opens the preview.

#include "platform/AtlasHome.h"
#include "print/ReportDocument.h"

#include <QDialog>
#include <memory>

class QLabel;
class QPrinter;
class QRadioButton;
class QScrollArea;

namespace mervola
{

class ReportPreview : public QDialog
{
    Q_OBJECT
public:
    // Loads dati/TempRpt.vrd of the home; a failure is shown and leaves the
    // preview empty (loaded() is false).
    explicit ReportPreview(AtlasHome home, bool printerAvailable = true, QWidget *parent = nullptr);
    ~ReportPreview() override;

    bool loaded() const { return m_loaded; }
    int page() const { return m_page; }
    int pageCount() const { return m_doc.pageCount(); }
    void showPage(int page);
    void setOrientation(ReportOrientation orientation);
    const ReportDocument &document() const { return m_doc; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void reload();
    void setupPrinter();
    void printAll();
    void savePdf();
    // Runs page painting with a progress window that can stop it.
    Status withProgress(const QString &caption, const std::function<Status(const ReportProgress &)> &work);

    AtlasHome m_home;
    ReportDocument m_doc;
    bool m_loaded = false;
    bool m_printerAvailable = true;
    int m_page = 0;
    std::unique_ptr<QPrinter> m_printer;
    QLabel *m_picture = nullptr;
    QLabel *m_indicator = nullptr;
    QScrollArea *m_scroll = nullptr;
    QRadioButton *m_portrait = nullptr;
    QRadioButton *m_landscape = nullptr;
};

// Prepares the report of a table (rows into TempRpt, the definition file)
// and opens the preview. Errors are shown with the title "Mervola".
// A report too wide for a portrait page but narrower in landscape is turned
// to landscape before it opens.
void openTableReport(QWidget *parent, const AtlasHome &home, const QList<ReportColumn> &columns,
                     const std::vector<QStringList> &rows, bool printerAvailable);

} // namespace mervola
