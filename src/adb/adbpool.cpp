#include "adbpool.h"

QThreadPool *AdbPool::instance()
{
    static QThreadPool *pool = [] {
        auto *created = new QThreadPool;
        created->setMaxThreadCount(DefaultThreads);
        created->setObjectName("AdbPool");
        // Kept for the life of the process: adb work comes in bursts, and threads made anew for each
        // burst leave the memory allocator a new arena every time.
        created->setExpiryTimeout(-1);
        return created;
    }();
    return pool;
}
