#pragma once

#include <QMutex>
#include <QObject>

#include <atomic>
#include <memory>

struct AVFrame;

// The one way decoded pictures reach whoever shows or saves them. The decoding thread publishes,
// the newest picture replaces one not yet taken (nothing queues), and readers on any thread take a
// reference to the latest. Viewers tell whether they are shown; while nobody watches, the producer
// may stop decoding.
class FrameHandoff : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int framesPublished READ framesPublished)

public:
    using Frame = std::shared_ptr<const AVFrame>;

    explicit FrameHandoff(QObject *parent = nullptr);

    // Any thread. Takes a new reference to frame; the caller keeps its own.
    void publish(const AVFrame *frame);
    // Forgets the picture (the session ended); readers see no frame from now on.
    void clear();

    // Any thread. The newest picture and its serial number (0 before the first, counting up).
    Frame latest(quint64 *serial = nullptr) const;
    quint64 serial() const { return m_serial.load(); }
    int framesPublished() const { return int(m_published.load()); }

    // Watchers that want pictures now (a view on screen, a pending screenshot, a benchmark).
    void addWatcher();
    void removeWatcher();
    bool isWatched() const { return m_watchers > 0; }

signals:
    // On the handoff's thread, at most one queued at a time however fast pictures arrive.
    void frameAvailable();
    void watchedChanged(bool watched);

private:
    void notify();

    mutable QMutex m_mutex;
    Frame m_frame;
    std::atomic<quint64> m_serial{0};
    std::atomic<quint64> m_published{0};
    std::atomic_bool m_notifyPending{false};
    int m_watchers = 0;
};
