#pragma once
// The splash window: shown while the program starts, and again as the
// "about" window (then with an OK button and the data credits).

#include <QDialog>

class QPushButton;
class QTimer;

namespace mervola {

class SplashWindow : public QDialog {
    Q_OBJECT
public:
    enum class Mode { StartUp, About };
    explicit SplashWindow(Mode mode, QWidget *parent = nullptr);
    Mode mode() const { return m_mode; }
    // Starts the timer that ends the start-up splash.
    void startTimer(int milliseconds);

signals:
    void timedOut();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Mode m_mode;
    QPushButton *m_ok = nullptr;
    QTimer *m_timer = nullptr;
};

}  // namespace mervola
