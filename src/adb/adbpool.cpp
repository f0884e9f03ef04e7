#include "adbpool.h"

#include <QCoreApplication>

QThreadPool *AdbPool::instance()
{
    static QThreadPool *pool = [] {
        auto *created = new QThreadPool;
        created->setMaxThreadCount(DefaultThreads);
        created->setObjectName("AdbPool");
        // Kept for the life of the process: adb work comes in bursts, and threads made anew for each
        // burst leave the memory allocator a new arena every time.
        created->setExpiryTimeout(-1);
        // adb calls still running when the application ends would meet the statics they use while
        // those are destroyed: queued work is dropped and running calls get a moment to end.
        qAddPostRoutine([] {
            instance()->clear();
            instance()->waitForDone(ExitWaitMs);
        });
        return created;
    }();
    return pool;
}
