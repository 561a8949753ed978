#pragma once
// frmModMappa: editor of the printed page's title (text, typeface, size)
// and of the names the themes carry in the page's legend. It takes the page
// description in and gives the edited one out; nothing else changes.

#include "print/MapPage.h"
#include "print/ui/PageFont.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QSpinBox;
class QTableWidget;

namespace mervola {

class FrmModMappa : public QDialog {
    Q_OBJECT
public:
    FrmModMappa(const MapPageContent &pageContent, FontFamiliesSource families, QWidget *parent = nullptr);
    // The page with the edited title, font, size and legend names.
    MapPageContent result(MapPageContent pageContent) const;

private:
    void cmdFont_Click();

    FontFamiliesSource m_families;
    QString m_font;
    QLineEdit *m_title = nullptr;
    QLabel *m_fontLabel = nullptr;
    QSpinBox *m_size = nullptr;
    QTableWidget *m_names = nullptr;
    std::vector<int> m_rows;  // legend index of each table row
};

}  // namespace mervola
