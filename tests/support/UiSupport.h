#pragma once
// Helpers of the window tests: the main window shown, answering modal
// windows, choosing in lists, mouse double clicks, legend entries, the
// highlight colour on a picture, the text of a printed PDF and screenshots.

#include "app/ui/MainWindow.h"
#include "classify/ui/ClassificationDialog.h"
#include "platform/ui/LegendView.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QImage>
#include <QWidget>
#include <QtTest>
#include <functional>

namespace mervola::test
{

// Runs `fn` on the next modal window of type T once it is shown (waiting up
// to two minutes: a loaded machine, or the sanitizer build, opens slowly).
template <class T> void whenModal(std::function<void(T *)> fn, int tries = 4800)
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

// Types `path` into a file dialog's name box, the file type `filter` chosen
// first, and accepts it. The dialog fills its name box while it reads the
// folder, so the name is typed again until the dialog has settled.
inline void typeIntoFileDialog(QFileDialog *d, const QString &path, const QString &filter = {})
{
    if (!filter.isEmpty())
        d->selectNameFilter(filter);
    auto settle = std::make_shared<std::function<void(int)>>();
    *settle = [d, path, settle](int tries) {
        if (auto *name = d->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
            name->setText(path);
        if (d->selectedFiles().value(0) == path || tries == 0) {
            QMetaObject::invokeMethod(d, "accept");
            return;
        }
        QTimer::singleShot(25, d, [settle, tries] { (*settle)(tries - 1); });
    };
    QTimer::singleShot(100, d, [settle] { (*settle)(40); });
}

// Loads the main window and shows it at 1000 x 700.
inline bool showLoaded(MainWindow &w)
{
    if (!w.load())
        return false;
    w.resize(1000, 700);
    w.show();
    return QTest::qWaitForWindowExposed(&w);
}

inline int legendIndex(const LegendView *legend, const QString &layer)
{
    for (int i = 0; i < legend->entryCount(); ++i)
        if (legend->layerNameAt(i) == layer)
            return i;
    return -1;
}

// Pixels in the highlight colour (pure yellow).
inline int yellowPixels(const QImage &image)
{
    int n = 0;
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < rgb.height(); ++y)
        for (int x = 0; x < rgb.width(); ++x) {
            const QRgb p = rgb.pixel(x, y);
            n += qRed(p) >= 250 && qGreen(p) >= 250 && qBlue(p) <= 10;
        }
    return n;
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

// Opens the classification window of `layer` by double-clicking its legend
// entry and runs `fn` in it.
inline void classifyThroughLegend(MainWindow &w, const QString &layer,
                                  std::function<void(classify::ClassificationDialog *)> fn)
{
    LegendView *legend = w.legend();
    const int index = legendIndex(legend, layer);
    QVERIFY2(index >= 0, qPrintable(layer));
    whenModal<classify::ClassificationDialog>(fn);
    doubleClick(legend->viewport(), legend->visualItemRect(legend->topLevelItem(index)).center());
}

} // namespace mervola::test
