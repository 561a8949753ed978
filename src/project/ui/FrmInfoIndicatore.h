#pragma once
// "Descrizione Indicatore": shows the description of an indicator that the
// caller has put together; the text follows the window's size.

#include <QDialog>

class QPlainTextEdit;

namespace mervola {

class FrmInfoIndicatore : public QDialog {
    Q_OBJECT
public:
    explicit FrmInfoIndicatore(const QString &text, QWidget *parent = nullptr);
    QString text() const;

private:
    QPlainTextEdit *m_text = nullptr;
};

// The text shown for an indicator field: its description, code, category,
// source and unit as the reference database records them; for a field that
// is not an indicator, its alias.
QString indicatorDescriptionText(const QString &field, const QString &description, const QString &code,
                                 const QString &category, const QString &source, const QString &unit);

}  // namespace mervola
