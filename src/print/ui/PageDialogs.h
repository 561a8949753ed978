#pragma once
// Buttons shared by the print page's editors.

#include <QString>
#include <functional>

class QDialog;
class QHBoxLayout;
class QLabel;

namespace mervola::pagedlg {

// "OK" (cmdOK) and "Annulla" (cmdAnnulla) bound to accept and reject.
QHBoxLayout *okCancel(QDialog *dlg);
// A font button (cmdFont) with the chosen family shown beside it.
QHBoxLayout *fontRow(QDialog *dlg, QLabel *label, const QString &caption, const std::function<void()> &onClick);

}  // namespace mervola::pagedlg
