#include "platform/ui/ScreenFit.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace mervola {

void resizeWithinScreen(QWidget *window, QSize wanted)
{
    QScreen *screen = window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    if (!screen) {
        window->resize(wanted);
        return;
    }
    const QRect area = screen->availableGeometry();
    // Room for the window frame and title bar that the window manager adds.
    const QSize room(std::max(200, area.width() - 16), std::max(150, area.height() - 40));
    const QSize size = wanted.boundedTo(room).expandedTo(window->minimumSize().boundedTo(room));
    window->resize(size);
    QPoint at = window->pos();
    if (window->isWindow() && !window->isVisible() && window->parentWidget()) {
        // Centred on the parent, as a dialog opens.
        const QWidget *parent = window->parentWidget()->window();
        at = parent->geometry().center() - QPoint(size.width() / 2, size.height() / 2);
    }
    at.setX(std::clamp(at.x(), area.left(), std::max(area.left(), area.right() - size.width())));
    at.setY(std::clamp(at.y(), area.top(), std::max(area.top(), area.bottom() - size.height() - 24)));
    window->move(at);
}

}  // namespace mervola
