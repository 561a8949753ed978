#pragma once
// Shows the program's messages in real message boxes with Italian buttons.

#include "platform/Messages.h"

class QWidget;

namespace mervola {

class MessageBoxPresenter : public MessagePresenter {
public:
    explicit MessageBoxPresenter(QWidget *parentProvider = nullptr) : m_parent(parentProvider) {}
    MsgAnswer present(int style, const QString &text, const QString &title) override;
    MsgAnswer presentDetailed(int style, const QString &text, const QString &details, const QString &title) override;
    void setParent(QWidget *parent) { m_parent = parent; }

private:
    MsgAnswer show(int style, const QString &text, const QString &details, const QString &title);
    QWidget *m_parent;
};

}  // namespace mervola
