#include "map/Parallel.h"

#include <QSemaphore>
#include <QThreadPool>
#include <algorithm>
#include <memory>
#include <vector>

namespace mervola::map
{

void runInParallel(int count, const std::function<void(int)> &job)
{
    if (count <= 0)
        return;
    QThreadPool *pool = QThreadPool::globalInstance();
    std::vector<std::unique_ptr<QRunnable>> jobs;
    QSemaphore done;
    for (int i = 1; i < count; ++i) {
        jobs.emplace_back(QRunnable::create([&job, &done, i] {
            job(i);
            done.release();
        }));
        jobs.back()->setAutoDelete(false);
        pool->start(jobs.back().get());
    }
    job(0);
    int pending = count - 1;
    for (auto &j : jobs)
        if (pool->tryTake(j.get())) {
            j->run();
            done.acquire();
            --pending;
        }
    done.acquire(pending);
}

int parallelPieces()
{
    return std::max(1, QThreadPool::globalInstance()->maxThreadCount());
}

} // namespace mervola::map
