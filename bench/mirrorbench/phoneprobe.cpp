#include "phoneprobe.h"

#include <QMutexLocker>

#include <time.h>

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/avutil.h>
}

namespace {
// Stamps of pictures never presented (replaced before the GUI looked) are dropped past this.
constexpr int MaxStamps = 256;
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
    if (m_counting)
        ++m_packets;
    QMutexLocker locker(&m_mutex);
    if (m_arrivalNsByPts.size() >= MaxStamps)
        m_arrivalNsByPts.clear();
    m_arrivalNsByPts.insert(packet->pts, m_counting ? nowNs() : -1);
}

void PhoneProbe::framePresented(qint64 pts)
{
    const qint64 now = nowNs();
    if (m_presentedEver++ == 0)
        m_firstPresentedNs = now;
    qint64 arrival = -1;
    {
        QMutexLocker locker(&m_mutex);
        arrival = m_arrivalNsByPts.take(pts);
    }
    if (!m_counting)
        return;
    ++m_presented;
    if (arrival > 0)
        m_latenciesNs.push_back(now - arrival);
}

void PhoneProbe::startCounting()
{
    m_packets = 0;
    m_presented = 0;
    m_latenciesNs.clear();
    m_counting = true;
}
