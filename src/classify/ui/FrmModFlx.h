#pragma once
// The class limits editor: two boxes for the lower and upper limit of one
// class. Value in (the class's "lower - upper" text), value out (the new
// text); every valid change is announced at once so the caller can update
// the class row while the dialog is open.

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace mervola::classify {

class FrmModFlx : public QDialog {
    Q_OBJECT
public:
    explicit FrmModFlx(const QString &valueText, QWidget *parent = nullptr);

    QString lowerText() const;
    QString upperText() const;
    // "lower - upper", as the class row shows it.
    QString valueText() const;

    // Closing: OK has checked the boxes, Annulla, Escape and the window's
    // close box check nothing; leaving a box as the window closes is no
    // leaving of the user's.
    void done(int result) override;

signals:
    // A limit was accepted on leaving its box.
    void limitsChanged(const QString &valueText);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool leaveLower(bool fromOk);
    bool leaveUpper(bool fromOk);
    void refuse(QLineEdit *box, const QString &message);
    void onOk();

    QLineEdit *m_lower = nullptr;
    QLineEdit *m_upper = nullptr;
    QPushButton *m_ok = nullptr;
    QString m_initialLower;
    QString m_initialUpper;
    bool m_refusing = false;      // a refusal is being shown; ignore the focus moves it causes
    bool m_justRefused = false;   // the press that moved the focus already got its message
    bool m_closing = false;       // leaving a box as the window closes checks nothing
};

}  // namespace mervola::classify
