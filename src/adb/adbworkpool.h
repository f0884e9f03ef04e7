#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QThread>

#include <atomic>

class AdbTask;

// The thread that runs group and single-phone adb work (installs, uploads, commands), apart from
// the user interface and from Qt's global pool, with a bound on the adb processes at once.
class AdbWorkPool : public QObject
{
    Q_OBJECT
public:
    static constexpr int defaultMaxRunning = 8;
    // The application setting that holds the user's bound.
    static constexpr const char *settingKey = "adbMaxProcesses";

    static AdbWorkPool *instance();
    ~AdbWorkPool() override;

    int maxRunning() const { return m_maxRunning; }
    // Zero or less restores the default. Start-up sets the user's bound; a change applies to work
    // not started yet.
    void setMaxRunning(int count);
    // Tasks handed over and not finished yet, queued or running.
    int activeCount() const { return m_active; }
    int runningCount() const { return m_runningCount; }

    // Takes a parentless task living on the calling thread: it moves to the pool's thread, starts
    // when a place is free and is deleted there once it has ended, clean-up included. Connect to
    // its signals before; after this call the task is known by its id only.
    quint64 submit(AdbTask *task);
    // Cancels a submitted task from any thread; nothing happens when it has already ended.
    static void cancel(quint64 id);

private:
    AdbWorkPool();
    void startQueued();
    void taskEnded(AdbTask *task);

    QThread m_thread;
    QObject *m_context = nullptr;
    // Touched on the pool's thread only.
    QHash<quint64, AdbTask *> m_tasks;
    QList<AdbTask *> m_queue;
    QList<AdbTask *> m_running;
    std::atomic<int> m_maxRunning{defaultMaxRunning};
    std::atomic<int> m_active{0};
    std::atomic<int> m_runningCount{0};
};
