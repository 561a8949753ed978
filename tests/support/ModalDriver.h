#pragma once
// Driving the windows a test opens modally: `onModal` waits (inside the
// window's own event loop) for the next modal window of a class and runs the
// test's steps on it. Header-only: widget tests include it.

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

namespace mervola::test {

// Runs `steps` on the first active modal window that inherits `className`
// (a Qt class name such as "QFileDialog" or "mervola::FrmSearch"), waiting
// up to two minutes for it (a loaded machine or the sanitizer build is slow).
inline void onModal(const char *className, std::function<void(QWidget *)> steps)
{
    auto *timer = new QTimer;
    timer->setInterval(30);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    QObject::connect(timer, &QTimer::timeout, [timer, clock, className, steps = std::move(steps)] {
        QWidget *w = QApplication::activeModalWidget();
        if (w && w->inherits(className)) {
            timer->stop();
            timer->deleteLater();
            steps(w);
        } else if (clock->elapsed() > 120000) {
            timer->stop();
            timer->deleteLater();
            qWarning("No modal %s appeared", className);
        }
    });
    timer->start();
}

}  // namespace mervola::test
