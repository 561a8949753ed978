#pragma once
// Helpers of the window tests: answering modal windows, choosing in lists,
// mouse double clicks, the text of a printed PDF and screenshots.

#include "support/TestSupport.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QImage>
#include <QWidget>
#include <QtTest>
#include <functional>

namespace mervola::test
{

// Runs `fn` on the next modal window of type T once it is shown.
template <class T> void whenModal(std::function<void(T *)> fn, int tries = 400)
{
    QTimer::singleShot(25, [fn, tries] {
        if (auto *w = qobject_cast<T *>(QApplication::activeModalWidget())) {
            fn(w);
            // A check that failed inside leaves the window open: close it.
            if (QTest::currentTestFailed())
                if (auto *d = qobject_cast<QDialog *>(w); d && d->isVisible())
                    d->reject();
            return;
        }
        if (tries > 0)
            whenModal<T>(fn, tries - 1);
    });
}

// Picks an entry of a list box by its text, as a user's choice (activated).
inline void choose(QComboBox *box, const QString &text)
{
    const int i = box->findText(text);
    QVERIFY2(i >= 0, qPrintable(text));
    box->setCurrentIndex(i);
    emit box->activated(i);
}

// A double click as the mouse gives it: press, release, then the double click.
inline void doubleClick(QWidget *w, QPoint at)
{
    QTest::mouseClick(w, Qt::LeftButton, {}, at);
    QTest::mouseDClick(w, Qt::LeftButton, {}, at);
}

inline QString pdfText(const QString &pdf)
{
    QString out, err;
    if (runProgram(QStringLiteral("pdftotext"), {QStringLiteral("-raw"), pdf, QStringLiteral("-")}, &out, &err) != 0)
        qWarning("pdftotext: %s", qPrintable(err));
    return out;
}

// Saves a picture of a window when MERVOLA_SCREENSHOT_DIR is set.
inline void snapshot(QWidget *w, const QString &name)
{
    const QString dir = qEnvironmentVariable("MERVOLA_SCREENSHOT_DIR");
    if (!dir.isEmpty())
        w->window()->grab().save(dir + QLatin1Char('/') + name + QStringLiteral(".png"));
}

} // namespace mervola::test
