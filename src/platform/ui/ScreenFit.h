#pragma once
// Windows open within the screen they appear on: a window asks for the size
// it likes and gets at most the available area (work area less panels), so
// that on a 1024 x 768 screen its buttons stay reachable.

#include <QSize>

class QWidget;

namespace mervola {

// Resizes `window` to `wanted`, shrunk to fit the available geometry of its
// screen, and moves it inside that area when it would stick out.
void resizeWithinScreen(QWidget *window, QSize wanted);

}  // namespace mervola
