#include "classify/ui/FrmModFlx.h"

#include "classify/ClassRange.h"
#include "classify/LimitsEdit.h"
#include "platform/Messages.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace mervola::classify {

namespace {
// A limit as the class row writes it; texts that are not numbers stay as typed.
QString normalised(const QString &text)
{
    double v = 0;
    return parseLimit(text, &v) ? formatLimit(v) : text.trimmed();
}
}  // namespace

FrmModFlx::FrmModFlx(const QString &valueText, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmModFlx"));
    setWindowTitle(QStringLiteral("Modifica limiti della classe"));
    setModal(true);

    const int at = valueText.indexOf(QStringLiteral(" - "));
    m_initialLower = at >= 0 ? valueText.left(at).trimmed() : valueText.trimmed();
    m_initialUpper = at >= 0 ? valueText.mid(at + 3).trimmed() : QString();

    m_lower = new QLineEdit(m_initialLower, this);
    m_lower->setObjectName(QStringLiteral("txtEstremoInferiore"));
    m_upper = new QLineEdit(m_initialUpper, this);
    m_upper->setObjectName(QStringLiteral("txtEstremoSuperiore"));
    m_lower->installEventFilter(this);
    m_upper->installEventFilter(this);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Estremo inferiore:"), m_lower);
    form->addRow(QStringLiteral("Estremo superiore:"), m_upper);

    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("cmdOk"));
    m_ok->setDefault(true);
    auto *cancel = new QPushButton(QStringLiteral("Annulla"), this);
    cancel->setObjectName(QStringLiteral("cmdAnnulla"));
    // Cancelling never checks the boxes, so it must not take the focus from them.
    cancel->setFocusPolicy(Qt::NoFocus);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_ok, QDialogButtonBox::AcceptRole);
    buttons->addButton(cancel, QDialogButtonBox::RejectRole);
    connect(m_ok, &QPushButton::clicked, this, &FrmModFlx::onOk);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    m_lower->setFocus();
}

QString FrmModFlx::lowerText() const { return m_lower->text(); }
QString FrmModFlx::upperText() const { return m_upper->text(); }

QString FrmModFlx::valueText() const
{
    return normalised(m_lower->text()) + QStringLiteral(" - ") + normalised(m_upper->text());
}

bool FrmModFlx::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_lower && watched != m_upper)
        return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress) {
        // Only digits, the two decimal marks and backspace reach the boxes;
        // keys without text (Tab, arrows, Enter) keep their usual meaning.
        const auto *key = static_cast<QKeyEvent *>(event);
        const QString text = key->text();
        if (key->key() == Qt::Key_Backspace)
            return false;
        if (!text.isEmpty() && text[0].isPrint() && !limitKeyAllowed(text[0]))
            return true;
    } else if (event->type() == QEvent::FocusOut && !m_refusing && !m_closing) {
        if (watched == m_lower)
            leaveLower(false);
        else
            leaveUpper(false);
    }
    return QDialog::eventFilter(watched, event);
}

void FrmModFlx::done(int result)
{
    m_closing = true;
    QDialog::done(result);
}

void FrmModFlx::refuse(QLineEdit *box, const QString &message)
{
    m_refusing = true;
    showMessage(MsgStyle::Critical, message);
    box->setFocus();
    m_refusing = false;
    m_justRefused = true;
    QTimer::singleShot(0, this, [this] { m_justRefused = false; });
}

bool FrmModFlx::leaveLower(bool fromOk)
{
    const LimitCheck c = checkLowerLimit(m_lower->text(), m_initialLower, m_upper->text());
    if (!c.ok) {
        if (!(fromOk && m_justRefused))
            refuse(m_lower, c.message);
        return false;
    }
    if (!fromOk) {
        if (c.upperText != m_upper->text())
            m_upper->setText(c.upperText);
        emit limitsChanged(valueText());
    }
    return true;
}

bool FrmModFlx::leaveUpper(bool fromOk)
{
    const LimitCheck c = checkUpperLimit(m_upper->text(), m_lower->text());
    if (!c.ok) {
        if (!(fromOk && m_justRefused))
            refuse(m_upper, c.message);
        return false;
    }
    if (!fromOk && m_upper->text() != m_initialUpper)
        emit limitsChanged(valueText());
    return true;
}

void FrmModFlx::onOk()
{
    if (!leaveLower(true) || !leaveUpper(true))
        return;
    accept();
}

}  // namespace mervola::classify
