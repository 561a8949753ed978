#include "platform/ui/MessageBoxPresenter.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTranslator>

namespace mervola {

namespace {

// Names the box's own details button "Dettagli" / "Nascondi dettagli" while
// a box with details is open.
class DetailsButtonText : public QTranslator {
public:
    QString translate(const char *context, const char *source, const char *disambiguation, int n) const override
    {
        if (qstrcmp(context, "QMessageBox") == 0) {
            if (qstrcmp(source, "Show Details...") == 0)
                return QStringLiteral("Dettagli");
            if (qstrcmp(source, "Hide Details...") == 0)
                return QStringLiteral("Nascondi dettagli");
        }
        return QTranslator::translate(context, source, disambiguation, n);
    }
    bool isEmpty() const override { return false; }
};

}  // namespace

MsgAnswer MessageBoxPresenter::present(int style, const QString &text, const QString &title)
{
    return show(style, text, QString(), title);
}

MsgAnswer MessageBoxPresenter::presentDetailed(int style, const QString &text, const QString &details,
                                               const QString &title)
{
    return show(style, text, details, title);
}

MsgAnswer MessageBoxPresenter::show(int style, const QString &text, const QString &details, const QString &title)
{
    QWidget *parent = m_parent ? m_parent : QApplication::activeWindow();
    DetailsButtonText detailsText;
    if (!details.isEmpty())
        QCoreApplication::installTranslator(&detailsText);
    struct Uninstall {
        QTranslator *t;
        ~Uninstall() { QCoreApplication::removeTranslator(t); }
    } uninstall{&detailsText};
    QMessageBox box(parent);
    box.setWindowTitle(title);
    box.setText(text);
    if (!details.isEmpty())
        box.setDetailedText(details);
    switch (style & 0x70) {
    case MsgStyle::Critical: box.setIcon(QMessageBox::Critical); break;
    case MsgStyle::Question: box.setIcon(QMessageBox::Question); break;
    case MsgStyle::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case MsgStyle::Information: box.setIcon(QMessageBox::Information); break;
    default: box.setIcon(QMessageBox::NoIcon);
    }
    struct Button {
        const char *text;
        MsgAnswer answer;
        QMessageBox::ButtonRole role;
    };
    std::vector<Button> buttons;
    switch (style & 7) {
    case MsgStyle::OkCancel:
        buttons = {{"OK", MsgAnswer::Ok, QMessageBox::AcceptRole}, {"&Annulla", MsgAnswer::Cancel, QMessageBox::RejectRole}};
        break;
    case MsgStyle::YesNoCancel:
        // Alt+S, Alt+N, Alt+A answer from the keyboard.
        buttons = {{"&Sì", MsgAnswer::Yes, QMessageBox::YesRole},
                   {"&No", MsgAnswer::No, QMessageBox::NoRole},
                   {"&Annulla", MsgAnswer::Cancel, QMessageBox::RejectRole}};
        break;
    case MsgStyle::YesNo:
        buttons = {{"&Sì", MsgAnswer::Yes, QMessageBox::YesRole}, {"&No", MsgAnswer::No, QMessageBox::NoRole}};
        break;
    default: buttons = {{"OK", MsgAnswer::Ok, QMessageBox::AcceptRole}};
    }
    const size_t def = std::min(buttons.size() - 1, size_t((style & 0x300) >> 8));
    std::vector<QPushButton *> made;
    for (const Button &b : buttons)
        made.push_back(box.addButton(QString::fromUtf8(b.text), b.role));
    box.setDefaultButton(made[def]);
    // Escape answers Cancel where there is one, else the last button.
    box.setEscapeButton(made.back());
    box.exec();
    for (size_t i = 0; i < made.size(); ++i)
        if (box.clickedButton() == made[i])
            return buttons[i].answer;
    return buttons.back().answer;
}

}  // namespace mervola
