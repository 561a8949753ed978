#pragma once
// frmStampaNew: the printed map page. A preview of the page beside its
// settings (title and its typeface, free text, orientation), with buttons to
// print it, save it as PDF or close. It works on its own copy of the page
// description and changes nothing in the program.

#include "platform/Result.h"
#include "print/MapPage.h"
#include "print/ui/FrmModMappa.h"
#include "print/ui/FrmModTesto.h"

#include <QDialog>
#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPrintPreviewWidget;
class QPrinter;
class QRadioButton;
class QTimer;

namespace mervola {

class FrmStampaNew : public QDialog {
    Q_OBJECT
public:
    explicit FrmStampaNew(MapPageContent pageContent, QWidget *parent = nullptr);
    ~FrmStampaNew() override;

    // The page as currently set in the window.
    const MapPageContent &pageContent() const { return m_content; }
    // Where the font buttons take the installed families from.
    void setFontFamiliesSource(FontFamiliesSource source) { m_families = std::move(source); }

    // Writes the page as PDF to `path` (new file, renamed when complete).
    Status savePdfTo(const QString &path) const;
    QPrintPreviewWidget *preview() const { return m_preview; }

private:
    void buildControls();
    void schedulePreview();
    void paintPreview(QPrinter *printer);
    void readControls();
    void writeControls();
    void setOrientation(QPageLayout::Orientation o);
    void cmdFontTitolo_Click();
    void cmdModMappa_Click();
    void cmdModTesto_Click();
    void cmdStampa_Click();
    void cmdSalvaPdf_Click();

    MapPageContent m_content;
    FontFamiliesSource m_families = defaultFontFamilies();
    std::unique_ptr<QPrinter> m_previewPrinter;
    QPrintPreviewWidget *m_preview = nullptr;
    QLineEdit *m_title = nullptr;
    QLabel *m_titleFont = nullptr;
    QPlainTextEdit *m_text = nullptr;
    QLineEdit *m_date = nullptr;
    QCheckBox *m_fit = nullptr;
    QRadioButton *m_portrait = nullptr;
    QRadioButton *m_landscape = nullptr;
    QTimer *m_previewTimer = nullptr;
    bool m_writing = false;  // controls being filled from the pageContent
};

// Opens the printed map page for `pageContent` (modal).
void openMapPrintPage(QWidget *parent, const MapPageContent &pageContent);

}  // namespace mervola
