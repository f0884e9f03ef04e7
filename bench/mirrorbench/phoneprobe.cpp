#include "phoneprobe.h"

#include <time.h>

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/avutil.h>
}

qint64 PhoneProbe::nowNs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}

void PhoneProbe::pushPacket(const AVPacket *packet)
{
    // Configuration packets (no timestamp) carry parameter sets, not pictures.
    if (!packet || packet->pts == AV_NOPTS_VALUE)
        return;
    if (m_pending && m_pendingCounted)
        ++m_packetsWithoutFrame;
    m_pending = true;
    m_pendingCounted = m_counting;
    m_pendingArrivalNs = nowNs();
    if (m_counting)
        ++m_packets;
}

void PhoneProbe::framePresented()
{
    ++m_framesEver;
    if (m_counting) {
        ++m_frames;
        if (m_pending && m_pendingCounted)
            m_latenciesNs.push_back(nowNs() - m_pendingArrivalNs);
    }
    m_pending = false;
}

void PhoneProbe::startCounting()
{
    m_counting = true;
    m_pending = false;
    m_packets = 0;
    m_frames = 0;
    m_packetsWithoutFrame = 0;
    m_latenciesNs.clear();
}
