#pragma once
// Steps in the join wizard as a user takes them. Header-only: widget tests
// include it.

#include <QComboBox>
#include <QPushButton>
#include <QWidget>

namespace mervola::test
{

// The join wizard's last steps as a user takes them: past the fields'
// page, the ISTAT code chosen on both sides, the join made.
inline void joinOnIstatCodes(QWidget *wizard)
{
    wizard->findChild<QPushButton *>(QStringLiteral("cmd_avanti"))->click();
    auto *ext = wizard->findChild<QComboBox *>(QStringLiteral("Combo_Ext"));
    auto *theme = wizard->findChild<QComboBox *>(QStringLiteral("cboJoin"));
    ext->setCurrentIndex(ext->findText(QStringLiteral("ISTAT")));
    theme->setCurrentIndex(theme->findText(QStringLiteral("Codice ISTAT")));
    wizard->findChild<QPushButton *>(QStringLiteral("cmd_avanti"))->click();
}

} // namespace mervola::test
