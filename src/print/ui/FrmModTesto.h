#pragma once
// frmModTesto: editor of the free text printed under the map and of its
// typeface. It takes the page description in and gives the edited one out.

#include "print/MapPage.h"
#include "print/ui/PageFont.h"

#include <QDialog>

class QLabel;
class QPlainTextEdit;

namespace mervola {

class FrmModTesto : public QDialog {
    Q_OBJECT
public:
    FrmModTesto(const MapPageContent &pageContent, FontFamiliesSource families, QWidget *parent = nullptr);
    MapPageContent result(MapPageContent pageContent) const;

private:
    FontFamiliesSource m_families;
    QString m_font;
    QPlainTextEdit *m_text = nullptr;
    QLabel *m_fontLabel = nullptr;
};

}  // namespace mervola
