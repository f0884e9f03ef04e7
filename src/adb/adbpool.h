#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

// The threads that wait for adb on behalf of phone sessions: launches, tear-downs and per-phone
// actions. Bounded, so that starting a hundred phones never floods the adb server, and separate
// from Qt's global pool, so that a slow phone never delays scans or screenshots.
class AdbPool
{
public:
    AdbPool() = delete;

    static constexpr int DefaultThreads = 8;
    static constexpr int ExitWaitMs = 5000;
    static QThreadPool *instance();
    // Whether the application is ending: work of run() not started yet is skipped then.
    static bool ending();

    // Runs work on the pool, then done(result) on context's thread; nothing is reported once
    // context is gone (the work itself still finishes).
    template<typename Work, typename Done>
    static void run(QObject *context, Work work, Done done)
    {
        using Result = decltype(work());
        auto *watcher = new QFutureWatcher<Result>(context);
        QObject::connect(watcher, &QFutureWatcher<Result>::finished, context,
                         [watcher, done = std::move(done)]() mutable {
                             watcher->deleteLater();
                             done(watcher->result());
                         });
        watcher->setFuture(QtConcurrent::run(instance(), [work = std::move(work)]() mutable {
            return ending() ? Result() : work();
        }));
    }

    // Work whose result nobody waits for (tear-downs); the application's end waits for it.
    template<typename Work>
    static void post(Work work)
    {
        instance()->start(std::move(work));
    }
};
