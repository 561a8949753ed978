#pragma once
// Answers a modal window of the user's path (a wizard, a file dialog, a
// classification window) from a test: `fn` runs on it as soon as it shows.

#include <QApplication>
#include <QTimer>
#include <functional>

namespace mervola::test
{

template <class T> void whenModal(std::function<void(T *)> fn)
{
    QTimer::singleShot(20, [fn] {
        if (auto *w = qobject_cast<T *>(QApplication::activeModalWidget()))
            fn(w);
        else
            whenModal<T>(fn);
    });
}

} // namespace mervola::test
