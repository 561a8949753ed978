#pragma once
// The Italian help page of the atlas home, shown in a window of its own.

#include <QDialog>

class QTextBrowser;

namespace mervola {

class HelpWindow : public QDialog {
    Q_OBJECT
public:
    // Shows `htmlFile`; links to other pages of the same folder open inside.
    explicit HelpWindow(const QString &htmlFile, QWidget *parent = nullptr);
    bool loaded() const { return m_loaded; }

private:
    QTextBrowser *m_browser = nullptr;
    bool m_loaded = false;
};

}  // namespace mervola
