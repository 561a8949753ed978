#include "app/ui/AtlasPreparation.h"

#include "atlas/AtlasBuilder.h"
#include "platform/Messages.h"

#include <QApplication>
#include <QEventLoop>
#include <QFutureWatcher>
#include <QProgressDialog>
#include <QtConcurrent/QtConcurrentRun>
#include <cstdio>

namespace mervola {

namespace {

// About as many steps as the builder reports for all Italy (reading,
// projection, communities, indicators, one per table written, database);
// the bar stops one short of the end until the build is done.
constexpr int kExpectedSteps = 56;

}  // namespace

bool prepareAtlasHome(const AtlasHome &home)
{
    using namespace AtlasPreparationText;
    QStringList searched;
    const QString sources = atlasSourcesFolder(&searched);
    if (sources.isEmpty()) {
        showMessage(MsgStyle::Critical, kNoSources.arg(home.root(), searched.join(QLatin1Char('\n'))));
        return false;
    }

    QProgressDialog dialog;
    dialog.setObjectName(QStringLiteral("frmPreparazione"));
    dialog.setWindowTitle(QStringLiteral("Mervola"));
    dialog.setLabelText(kPreparing);
    dialog.setCancelButton(nullptr);
    dialog.setRange(0, kExpectedSteps);
    dialog.setMinimumDuration(0);
    dialog.setMinimumWidth(460);
    dialog.setValue(0);
    dialog.show();
    std::fprintf(stderr, "%s\n", kPreparing.toUtf8().constData());

    int steps = 0;
    auto showStep = [&dialog, &steps](const QString &text) {
        dialog.setLabelText(kPreparing + QLatin1Char('\n') + text);
        dialog.setValue(std::min(++steps, kExpectedSteps - 1));
    };
    // The builder runs on a worker thread; its steps reach the window queued.
    auto progress = [&dialog, showStep](const QString &text) {
        std::fprintf(stderr, "  %s\n", text.toUtf8().constData());
        QMetaObject::invokeMethod(
            &dialog, [showStep, text] { showStep(text); }, Qt::QueuedConnection);
    };
    const atlas::AtlasBuildOptions options{sources, home.root(), {}};
    QFutureWatcher<Status> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcher<Status>::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(QtConcurrent::run([options, progress] { return atlas::buildAtlas(options, progress); }));
    if (!watcher.isFinished())
        loop.exec();
    QCoreApplication::sendPostedEvents(&dialog);
    const Status built = watcher.result();
    dialog.setValue(kExpectedSteps);
    dialog.hide();
    if (!built) {
        showMessage(MsgStyle::Critical, kFailed.arg(home.root(), built.errorMessage()));
        return false;
    }
    return home.exists();
}

}  // namespace mervola
