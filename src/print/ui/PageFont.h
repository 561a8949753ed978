#pragma once
// The font button of the print page's editors: frmFont over the installed
// families, or a notice when the system has none.

#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

namespace mervola {

namespace PrintText {
inline const QString kNoFonts = QStringLiteral("Non è installato alcun font nel sistema");
}

// Where the font buttons take the installed families from (tests replace it).
using FontFamiliesSource = std::function<QStringList()>;
FontFamiliesSource defaultFontFamilies();

// Opens frmFont on `font`; with no font installed says so and leaves `font`
// as it was. True when the font changed.
bool choosePageFont(QWidget *parent, QString &font, const FontFamiliesSource &families);

}  // namespace mervola
