#include "print/ui/PageFont.h"

#include "platform/Messages.h"
#include "print/ui/FrmFont.h"

namespace mervola {

FontFamiliesSource defaultFontFamilies()
{
    return [] { return installedFontFamilies(); };
}

bool choosePageFont(QWidget *parent, QString &font, const FontFamiliesSource &families)
{
    const QStringList list = families ? families() : installedFontFamilies();
    if (list.isEmpty()) {
        showMessage(MsgStyle::Exclamation, PrintText::kNoFonts);
        return false;
    }
    const QString before = font;
    FrmFont dlg(font, list, parent);
    dlg.exec();
    return font != before;
}

}  // namespace mervola
