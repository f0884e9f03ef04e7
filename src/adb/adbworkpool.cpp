#include "adbworkpool.h"

#include "adbtask.h"
#include "appconfig.h"

#include <QCoreApplication>

AdbWorkPool *AdbWorkPool::instance()
{
    static AdbWorkPool *pool = [] {
        auto *created = new AdbWorkPool;
        // Ends with the application, before Qt's own objects go.
        QObject::connect(qApp, &QObject::destroyed, [created] { delete created; });
        // The user's bound, from the application settings; changes apply to work not yet started.
        AppConfig *config = AppConfig::instance();
        created->setMaxRunning(config->getAppSetting(settingKey, QString::number(defaultMaxRunning)).toInt());
        QObject::connect(config, &AppConfig::appSettingChanged, created, [created](const QString &key, const QString &value) {
            if (key == settingKey)
                created->setMaxRunning(value.toInt());
        });
        return created;
    }();
    return pool;
}

AdbWorkPool::AdbWorkPool()
{
    m_thread.setObjectName("AdbWorkPool");
    m_context = new QObject;
    m_context->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_context, &QObject::deleteLater);
    m_thread.start();
}

AdbWorkPool::~AdbWorkPool()
{
    // No adb process outlives the application; the tasks themselves belong to their owners.
    QMetaObject::invokeMethod(
        m_context,
        [this] {
            m_queue.clear();
            const QSet<QObject *> running = m_running;
            for (QObject *task : running)
                static_cast<AdbTask *>(task)->cancel();
        },
        Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void AdbWorkPool::setMaxRunning(int count)
{
    m_maxRunning = count > 0 ? count : defaultMaxRunning;
    QMetaObject::invokeMethod(m_context, [this] { startQueued(); }, Qt::QueuedConnection);
}

void AdbWorkPool::submit(AdbTask *task)
{
    ++m_active;
    task->moveToThread(&m_thread);
    QMetaObject::invokeMethod(
        m_context,
        [this, task] {
            connect(task, &AdbTask::finished, m_context, [this, task] { taskEnded(task); });
            connect(task, &QObject::destroyed, m_context, [this, task] { taskEnded(task); });
            m_queue.append(task);
            startQueued();
        },
        Qt::QueuedConnection);
}

void AdbWorkPool::cancel(AdbTask *task)
{
    QMetaObject::invokeMethod(task, &AdbTask::cancel, Qt::QueuedConnection);
}

void AdbWorkPool::startQueued()
{
    while (m_running.size() < m_maxRunning && !m_queue.isEmpty()) {
        AdbTask *task = m_queue.takeFirst();
        if (!task)
            continue;
        m_running.insert(task);
        m_runningCount = int(m_running.size());
        task->start();
    }
}

void AdbWorkPool::taskEnded(QObject *task)
{
    // Called for the end and again for the deletion; counts once.
    const bool wasRunning = m_running.remove(task);
    const qsizetype queued = m_queue.removeAll(static_cast<AdbTask *>(task));
    if (!wasRunning && queued == 0)
        return;
    m_runningCount = int(m_running.size());
    --m_active;
    startQueued();
}
