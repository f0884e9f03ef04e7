#pragma once

#include "packetsink.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

extern "C" {
#include <libavcodec/avcodec.h>
}

struct SeenPacket
{
    QByteArray data;
    qint64 pts = 0;
    qint64 dts = 0;
    bool key = false;
    bool operator==(const SeenPacket &o) const
    {
        return data == o.data && pts == o.pts && dts == o.dts && key == o.key;
    }
};

// Keeps a copy of every packet and writes its name to a log shared between sinks, so a test sees
// the order in which the sinks were called.
class RecordingSink : public PacketSink
{
public:
    explicit RecordingSink(QString name = {}, QStringList *log = nullptr) : m_name(std::move(name)), m_log(log) {}
    void pushPacket(const AVPacket *packet) override
    {
        packets.append({QByteArray(reinterpret_cast<const char *>(packet->data), packet->size), packet->pts,
                        packet->dts, bool(packet->flags & AV_PKT_FLAG_KEY)});
        if (m_log)
            m_log->append(m_name);
    }
    QList<SeenPacket> packets;

private:
    QString m_name;
    QStringList *m_log;
};
