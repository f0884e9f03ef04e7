#pragma once

#include "packetsink.h"

#include <QtGlobal>

#include <vector>

// Watches one phone's video path. As the first packet sink it sees every picture packet before the
// decoder and stamps it; the stamp is read again once the picture has been presented. Demuxing,
// decoding and presenting run synchronously on the thread that reads the socket, so the picture
// presented while a packet is on its way belongs to that packet: a packet that yields no picture
// is counted as such instead of shifting every later pairing.
class PhoneProbe : public PacketSink
{
public:
    void pushPacket(const AVPacket *packet) override;
    // Call right after the view's present() has returned.
    void framePresented();

    // Zeroes the counters and keeps latencies only for packets stamped from now on.
    void startCounting();
    void stopCounting() { m_counting = false; }

    qint64 packets() const { return m_packets; }
    qint64 frames() const { return m_frames; }
    qint64 framesSinceStart() const { return m_framesEver; }
    qint64 packetsWithoutFrame() const { return m_packetsWithoutFrame; }
    const std::vector<qint64> &latenciesNs() const { return m_latenciesNs; }

    // Monotonic nanoseconds shared by every probe.
    static qint64 nowNs();

private:
    bool m_counting = false;
    bool m_pending = false;
    bool m_pendingCounted = false;
    qint64 m_pendingArrivalNs = 0;
    qint64 m_packets = 0;
    qint64 m_frames = 0;
    qint64 m_framesEver = 0;
    qint64 m_packetsWithoutFrame = 0;
    std::vector<qint64> m_latenciesNs;
};
