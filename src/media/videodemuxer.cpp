#include "videodemuxer.h"

#include "packetframing.h"
#include "packetsink.h"

#include <QIODevice>
#include <QtEndian>
#include <QtDebug>

#include <cstring>

namespace {

using PacketFraming::ConfigFlag;
using PacketFraming::KeyFrameFlag;
constexpr quint64 PtsMask = (quint64(1) << 62) - 1;
constexpr int DeviceNameSize = 64;

// Deliberately loose: three leading zero bytes count as a start code whatever follows them.
bool startsWithStartCode(const uchar *p)
{
    return p[0] == 0 && p[1] == 0 && (p[2] == 0 || p[2] == 1 || p[3] == 1);
}

} // namespace

VideoDemuxer::VideoDemuxer(QIODevice *socket, PacketSink *recorder, PacketSink *decoder)
    : m_socket(socket)
    , m_packet(av_packet_alloc())
{
    insertPacketSink(int(m_sinks.size()), recorder);
    insertPacketSink(int(m_sinks.size()), decoder);
    if (m_socket)
        connect(m_socket, &QIODevice::readyRead, this, &VideoDemuxer::read);
}

VideoDemuxer::~VideoDemuxer()
{
    av_packet_free(&m_packet);
    avcodec_parameters_free(&m_stream);
}

void VideoDemuxer::insertPacketSink(int position, PacketSink *sink)
{
    if (!sink)
        return;
    if (position < 0 || position > m_sinks.size())
        position = int(m_sinks.size());
    m_sinks.insert(position, GuardedPacketSink(sink));
    if (m_stream)
        m_sinks.at(position).open(m_stream);
}

void VideoDemuxer::read()
{
    if (m_socket)
        m_buffer.append(m_socket->readAll());

    if (!m_headerParsed && !parseHeader())
        return;
    if (!m_packet)
        return;

    // Consumed bytes are removed once at the end, so a burst of small packets costs one move.
    const auto *data = reinterpret_cast<const uchar *>(m_buffer.constData());
    const qsizetype available = m_buffer.size();
    qsizetype pos = 0;
    for (int pass = 0; pass < MaxPacketsPerRead; ++pass) {
        const PacketFraming::Entry entry = PacketFraming::next(data + pos, available - pos, MaxPayloadSize);
        if (entry.status == PacketFraming::Entry::NeedMore)
            break;
        if (entry.status == PacketFraming::Entry::BadSize
            || !fillPacket(reinterpret_cast<const char *>(entry.payload), int(entry.size))) {
            pos += PacketHeaderSize;
            continue;
        }
        pos += PacketHeaderSize + entry.size;
        const quint64 ptsAndFlags = entry.ptsAndFlags;

        const qint64 pts = (ptsAndFlags & ConfigFlag) ? AV_NOPTS_VALUE : qint64(ptsAndFlags & PtsMask);
        m_packet->pts = pts;
        m_packet->dts = pts;
        if (ptsAndFlags & KeyFrameFlag)
            m_packet->flags |= AV_PKT_FLAG_KEY;

        // By index: a sink may add another one while it is being fed.
        for (qsizetype i = 0; i < m_sinks.size(); ++i)
            m_sinks.at(i).push(m_packet);
        av_packet_unref(m_packet);
    }
    m_buffer.remove(0, pos);
}

bool VideoDemuxer::fillPacket(const char *data, int size)
{
    static const char startCode[4] = {0, 0, 0, 1};
    const bool needsStartCode = size > 4 && !startsWithStartCode(reinterpret_cast<const uchar *>(data));
    if (needsStartCode && av_new_packet(m_packet, size + 4) == 0) {
        std::memcpy(m_packet->data, startCode, 4);
        std::memcpy(m_packet->data + 4, data, size_t(size));
        return true;
    }
    // Without room for the start code the payload still goes out as it came.
    if (av_new_packet(m_packet, size) < 0)
        return false;
    std::memcpy(m_packet->data, data, size_t(size));
    return true;
}

bool VideoDemuxer::parseHeader()
{
    if (m_buffer.size() < HeaderSize)
        return false;

    const auto *data = reinterpret_cast<const uchar *>(m_buffer.constData());
    const QByteArray name = m_buffer.left(DeviceNameSize);
    const qsizetype nul = name.indexOf('\0');
    m_deviceName = QString::fromUtf8(nul < 0 ? name : name.left(nul));
    m_codecId = m_buffer.mid(DeviceNameSize, 4);
    m_width = qFromBigEndian<quint32>(data + 68);
    m_height = qFromBigEndian<quint32>(data + 72);
    m_buffer.remove(0, HeaderSize);
    m_headerParsed = true;

    return describeStream();
}

bool VideoDemuxer::describeStream()
{
    // The phone names its codec the way FFmpeg does ("h264"), so the name is looked up as it is.
    const QByteArray codecName = QString::fromLatin1(m_codecId).toLatin1();
    const AVCodecDescriptor *codec = avcodec_descriptor_get_by_name(codecName.constData());
    if (!codec)
        qWarning() << "VideoDemuxer: unknown codec" << codecName;
    m_stream = avcodec_parameters_alloc();
    if (!m_stream)
        return false;
    m_stream->codec_type = AVMEDIA_TYPE_VIDEO;
    m_stream->codec_id = codec ? codec->id : AV_CODEC_ID_NONE;
    m_stream->width = int(m_width);
    m_stream->height = int(m_height);
    for (qsizetype i = 0; i < m_sinks.size(); ++i)
        m_sinks.at(i).open(m_stream);
    // A stream nobody can decode ends the read that found it; its packets still follow.
    return codec != nullptr;
}
