#pragma once
// Editors of the printed map page's texts:
//  - frmModMappa: the title (text, typeface, size) and the names the themes
//    carry in the page's legend;
//  - frmModTesto: the free text under the map and its typeface.
// Both take the page description in and give the edited one out; nothing
// else changes.

#include "print/MapPage.h"

#include <QDialog>
#include <functional>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSpinBox;
class QTableWidget;

namespace mervola {

namespace PrintText {
inline const QString kNoFonts = QStringLiteral("Non è installato alcun font nel sistema");
}

// Where the font buttons take the installed families from (tests replace it).
using FontFamiliesSource = std::function<QStringList()>;
FontFamiliesSource defaultFontFamilies();

// The font button: opens frmFont on `font`; with no font installed says so
// and leaves `font` as it was. True when the font changed.
bool choosePageFont(QWidget *parent, QString &font, const FontFamiliesSource &families);

class FrmModMappa : public QDialog {
    Q_OBJECT
public:
    FrmModMappa(const MapPageSpec &spec, FontFamiliesSource families, QWidget *parent = nullptr);
    // The page with the edited title, font, size and legend names.
    MapPageSpec result(MapPageSpec spec) const;

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

class FrmModTesto : public QDialog {
    Q_OBJECT
public:
    FrmModTesto(const MapPageSpec &spec, FontFamiliesSource families, QWidget *parent = nullptr);
    MapPageSpec result(MapPageSpec spec) const;

private:
    FontFamiliesSource m_families;
    QString m_font;
    QPlainTextEdit *m_text = nullptr;
    QLabel *m_fontLabel = nullptr;
};

}  // namespace mervola
