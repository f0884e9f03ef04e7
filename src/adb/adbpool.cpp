#include "adbpool.h"

QThreadPool *AdbPool::instance()
{
    static QThreadPool *pool = [] {
        auto *created = new QThreadPool;
        created->setMaxThreadCount(DefaultThreads);
        created->setObjectName("AdbPool");
        return created;
    }();
    return pool;
}
