#pragma once
// The one way the program shows a message box. The style is the classic
// number: icon (16 critical, 32 question, 48 exclamation, 64 information) +
// buttons (0 OK, 1 OK/Cancel, 3 Yes/No/Cancel, 4 Yes/No) + default button
// (0 first, 256 second, 512 third). The title is always "Mervola".
// The widgets library installs a presenter that opens a real box; tests
// install a MessageRecorder that captures what was shown and scripts answers.

#include <QList>
#include <QString>

namespace mervola {

namespace MsgStyle {
constexpr int Ok = 0;
constexpr int OkCancel = 1;
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;
constexpr int DefaultButton2 = 256;
constexpr int DefaultButton3 = 512;
}  // namespace MsgStyle

enum class MsgAnswer { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

inline const QString kAppTitle = QStringLiteral("Mervola");

class MessagePresenter {
public:
    virtual ~MessagePresenter() = default;
    virtual MsgAnswer present(int style, const QString &text, const QString &title) = 0;
    // The same box with a "Dettagli" button that shows `details`.
    virtual MsgAnswer presentDetailed(int style, const QString &text, const QString &details, const QString &title)
    {
        (void)details;
        return present(style, text, title);
    }
};

// Shows a message through the installed presenter (stderr when none).
MsgAnswer showMessage(int style, const QString &text, const QString &title = kAppTitle);
// A message whose box also has a "Dettagli" button showing `details` (why
// something failed). On stderr the details follow the text.
MsgAnswer showDetailedMessage(int style, const QString &text, const QString &details,
                              const QString &title = kAppTitle);
// Installs a presenter; returns the previous one. Not owned.
MessagePresenter *setMessagePresenter(MessagePresenter *presenter);

// The answer a box gives when its default button is pressed.
MsgAnswer defaultAnswer(int style);

// Records messages and answers them from a script (default button when the
// script is empty). Installs itself for its lifetime.
class MessageRecorder : public MessagePresenter {
public:
    struct Entry {
        int style;
        QString text;
        QString title;
        QString details;  // empty unless the box has a "Dettagli" button
    };
    MessageRecorder();
    ~MessageRecorder() override;
    MsgAnswer present(int style, const QString &text, const QString &title) override;
    MsgAnswer presentDetailed(int style, const QString &text, const QString &details, const QString &title) override;

    void script(MsgAnswer answer) { m_script << answer; }
    const QList<Entry> &entries() const { return m_entries; }
    bool contains(const QString &text) const;
    void clear() { m_entries.clear(); }

private:
    QList<Entry> m_entries;
    QList<MsgAnswer> m_script;
    MessagePresenter *m_previous = nullptr;
};

}  // namespace mervola
