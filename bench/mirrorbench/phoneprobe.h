#pragma once

#include "packetsink.h"

#include <QHash>
#include <QMutex>
#include <QtGlobal>

#include <atomic>
#include <vector>

// Watches one phone's video path. As the first packet sink it stamps each picture packet's
// arrival on the media thread; when the GUI thread is told of a new picture, the stamp of that
// picture's timestamp gives the latency from the socket to the view's hand-off.
class PhoneProbe : public PacketSink
{
public:
    // Media thread.
    void pushPacket(const AVPacket *packet) override;
    // GUI thread: a picture with this timestamp reached the hand-off (pictures skipped in between
    // by latest-wins are not presented and have no latency).
    void framePresented(qint64 pts);

    // Zeroes the counters and keeps latencies only for packets stamped from now on.
    void startCounting();
    void stopCounting() { m_counting = false; }

    qint64 packets() const { return m_packets.load(); }
    qint64 presented() const { return m_presented; }
    qint64 framesSinceStart() const { return m_presentedEver; }
    // Monotonic time of the first picture presented, 0 before it.
    qint64 firstPresentedNs() const { return m_firstPresentedNs; }
    const std::vector<qint64> &latenciesNs() const { return m_latenciesNs; }

    // Monotonic nanoseconds shared by every probe.
    static qint64 nowNs();

private:
    std::atomic_bool m_counting{false};
    std::atomic<qint64> m_packets{0};
    QMutex m_mutex;
    QHash<qint64, qint64> m_arrivalNsByPts;
    qint64 m_presented = 0;
    qint64 m_presentedEver = 0;
    qint64 m_firstPresentedNs = 0;
    std::vector<qint64> m_latenciesNs;
};
