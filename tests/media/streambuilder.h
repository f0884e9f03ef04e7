#pragma once

#include "h264encoder.h"
#include "packetsink.h"
#include "streamframing.h"

#include <QtEndian>

#include <tuple>

extern "C" {
#include <libavcodec/avcodec.h>
}

struct SeenPacket
{
    QByteArray data;
    qint64 pts = 0;
    qint64 dts = 0;
    bool key = false;
    bool operator==(const SeenPacket &o) const { return std::tie(data, pts, dts, key) == std::tie(o.data, o.pts, o.dts, o.key); }
};

// What a sink was opened with.
struct SeenStream
{
    AVCodecID codec = AV_CODEC_ID_NONE;
    QSize size;
    bool operator==(const SeenStream &o) const { return std::tie(codec, size) == std::tie(o.codec, o.size); }
};

// Keeps a copy of every packet and writes its name to a log shared between sinks, so a test sees
// the order in which the sinks were called.
class RecordingSink : public PacketSink
{
public:
    explicit RecordingSink(QString name = {}, QStringList *log = nullptr) : m_name(std::move(name)), m_log(log) {}
    void openStream(const AVCodecParameters *stream) override
    {
        streams.append({stream->codec_id, QSize(stream->width, stream->height)});
    }
    void pushPacket(const AVPacket *packet) override
    {
        packets.append({QByteArray(reinterpret_cast<const char *>(packet->data), packet->size), packet->pts,
                        packet->dts, bool(packet->flags & AV_PKT_FLAG_KEY)});
        if (m_log)
            m_log->append(m_name);
    }
    QList<SeenStream> streams;
    QList<SeenPacket> packets;

private:
    QString m_name;
    QStringList *m_log;
};

// Bytes as the phone's server sends them on the video socket; packet headers are raw so that a
// test may lie about flags or sizes.
namespace StreamBuilder {

constexpr quint64 ConfigFlag = StreamFraming::configFlag;
constexpr quint64 KeyFlag = StreamFraming::keyFrameFlag;

inline QByteArray header(const QString &name, const QByteArray &codecId, int width, int height)
{
    return StreamFraming::deviceName(name)
           + StreamFraming::videoHeader(qFromBigEndian<quint32>(codecId.constData()), QSize(width, height));
}

inline QByteArray packetHeader(quint64 ptsAndFlags, quint32 size)
{
    char be[12];
    qToBigEndian(ptsAndFlags, be);
    qToBigEndian(size, be + 8);
    return QByteArray(be, 12);
}

inline QByteArray packet(quint64 ptsAndFlags, const QByteArray &payload)
{
    return packetHeader(ptsAndFlags, quint32(payload.size())) + payload;
}

// A clip from phonesim's encoder: its configuration packet, then one packet per picture. At fps
// frames a second the encoder places a key frame every 10 * fps pictures.
struct H264Clip
{
    QSize size;
    QByteArray config;
    QList<H264Encoder::Packet> pictures;

    QByteArray packet(int i) const
    {
        return StreamFraming::packet(pictures[i].data, pictures[i].ptsUs, false, pictures[i].keyFrame);
    }
    // The stream header, the configuration and the pictures before `end`.
    QByteArray stream(int end) const
    {
        QByteArray bytes = header("test phone", "h264", size.width(), size.height())
                           + StreamFraming::packet(config, 0, true, false);
        for (int i = 0; i < end; ++i)
            bytes += packet(i);
        return bytes;
    }
};

inline H264Clip encodeClip(const QSize &size, int count, int fps = 30)
{
    H264Clip clip{size, {}, {}};
    H264Encoder encoder;
    QString error;
    if (!encoder.open(size, 1000000, fps, &error))
        qWarning("%s", qPrintable(error));
    clip.config = encoder.config();
    QImage picture(size, QImage::Format_RGB32);
    for (int i = 0; encoder.isOpen() && i < count; ++i) {
        picture.fill(QColor(60 + 4 * i, 120, 180));
        encoder.encode(picture, i * 33333, &clip.pictures);
    }
    return clip;
}

} // namespace StreamBuilder
