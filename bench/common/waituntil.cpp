#include "waituntil.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

bool waitUntil(const std::function<bool()> &done, int timeoutMs, const std::function<bool()> &stopRequested)
{
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer check;
    bool reached = done();
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        reached = done();
        if (reached || clock.elapsed() >= timeoutMs || stopRequested())
            loop.quit();
    });
    if (!reached) {
        check.start(20);
        loop.exec();
    }
    return reached;
}
