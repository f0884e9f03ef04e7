#include "adbworkpool.h"

#include "adbtask.h"
#include "appowned.h"

#include <QtAlgorithms>

namespace {
// Cancels may come from objects that outlive the pool at exit; they find nothing to cancel then.
std::atomic<AdbWorkPool *> livePool{nullptr};
}

AdbWorkPool *AdbWorkPool::instance()
{
    static AppOwned<AdbWorkPool> pool([] { return new AdbWorkPool; }, AppOwnedBase::Kind::Worker);
    return pool.get();
}

AdbWorkPool::AdbWorkPool()
{
    m_thread.setObjectName("AdbWorkPool");
    m_context = new QObject;
    m_context->moveToThread(&m_thread);
    m_thread.start();
    livePool = this;
}

AdbWorkPool::~AdbWorkPool()
{
    livePool = nullptr;
    // No adb process outlives the application: deleting a task kills what it runs.
    QMetaObject::invokeMethod(
        m_context,
        [this] {
            m_queue.clear();
            m_running.clear();
            qDeleteAll(m_tasks);
            m_tasks.clear();
        },
        Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
    // A deferred delete would never run once the thread's loop has ended.
    delete m_context;
}

void AdbWorkPool::setMaxRunning(int count)
{
    m_maxRunning = count > 0 ? count : defaultMaxRunning;
    QMetaObject::invokeMethod(m_context, [this] { startQueued(); }, Qt::QueuedConnection);
}

quint64 AdbWorkPool::submit(AdbTask *task)
{
    ++m_active;
    const quint64 id = task->id();
    task->moveToThread(&m_thread);
    QMetaObject::invokeMethod(
        m_context,
        [this, task, id] {
            connect(task, &AdbTask::ended, m_context, [this, task] { taskEnded(task); });
            m_tasks.insert(id, task);
            m_queue.append(task);
            startQueued();
        },
        Qt::QueuedConnection);
    return id;
}

void AdbWorkPool::cancel(quint64 id)
{
    AdbWorkPool *pool = livePool;
    if (!pool || id == 0)
        return;
    QMetaObject::invokeMethod(
        pool->m_context,
        [pool, id] {
            if (AdbTask *task = pool->m_tasks.value(id))
                task->cancel();
        },
        Qt::QueuedConnection);
}

void AdbWorkPool::startQueued()
{
    while (m_running.size() < m_maxRunning && !m_queue.isEmpty()) {
        AdbTask *task = m_queue.takeFirst();
        m_running.append(task);
        m_runningCount = int(m_running.size());
        task->start();
    }
}

void AdbWorkPool::taskEnded(AdbTask *task)
{
    if (!m_tasks.remove(task->id()))
        return;
    m_running.removeOne(task);
    m_queue.removeOne(task);
    m_runningCount = int(m_running.size());
    --m_active;
    task->deleteLater();
    startQueued();
}
