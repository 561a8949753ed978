#include "platform/Messages.h"

#include <cstdio>

namespace mervola {

namespace {
MessagePresenter *g_presenter = nullptr;
}

MsgAnswer defaultAnswer(int style)
{
    const int buttons = style & 7;
    const int def = (style & 0x300) >> 8;  // 0, 1 or 2
    switch (buttons) {
    case MsgStyle::OkCancel: return def == 1 ? MsgAnswer::Cancel : MsgAnswer::Ok;
    case MsgStyle::YesNoCancel:
        return def == 0 ? MsgAnswer::Yes : def == 1 ? MsgAnswer::No : MsgAnswer::Cancel;
    case MsgStyle::YesNo: return def == 1 ? MsgAnswer::No : MsgAnswer::Yes;
    default: return MsgAnswer::Ok;
    }
}

MsgAnswer showMessage(int style, const QString &text, const QString &title)
{
    if (g_presenter)
        return g_presenter->present(style, text, title);
    std::fprintf(stderr, "%s: %s\n", title.toUtf8().constData(), text.toUtf8().constData());
    return defaultAnswer(style);
}

MsgAnswer showDetailedMessage(int style, const QString &text, const QString &details, const QString &title)
{
    if (g_presenter)
        return g_presenter->presentDetailed(style, text, details, title);
    std::fprintf(stderr, "%s: %s\nDettagli: %s\n", title.toUtf8().constData(), text.toUtf8().constData(),
                 details.toUtf8().constData());
    return defaultAnswer(style);
}

MessagePresenter *setMessagePresenter(MessagePresenter *presenter)
{
    MessagePresenter *old = g_presenter;
    g_presenter = presenter;
    return old;
}

MessageRecorder::MessageRecorder() { m_previous = setMessagePresenter(this); }

MessageRecorder::~MessageRecorder() { setMessagePresenter(m_previous); }

MsgAnswer MessageRecorder::present(int style, const QString &text, const QString &title)
{
    m_entries << Entry{style, text, title, QString()};
    return m_script.isEmpty() ? defaultAnswer(style) : m_script.takeFirst();
}

MsgAnswer MessageRecorder::presentDetailed(int style, const QString &text, const QString &details,
                                           const QString &title)
{
    const MsgAnswer answer = present(style, text, title);
    m_entries.last().details = details;
    return answer;
}

bool MessageRecorder::contains(const QString &text) const
{
    for (const Entry &e : m_entries)
        if (e.text == text)
            return true;
    return false;
}

}  // namespace mervola
