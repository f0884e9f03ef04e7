#include "audiodemuxer.h"

#include "packetframing.h"
#include "packetsink.h"

#include <QtEndian>
#include <QtDebug>

#include <cstring>

extern "C" {
#include <libavutil/channel_layout.h>
}

AudioDemuxer::AudioDemuxer(QIODevice *socket, PacketSink *recorder, PacketSink *decoder, bool deviceNameFirst)
    : m_socket(socket)
    , m_deviceNameFirst(deviceNameFirst)
    , m_packet(av_packet_alloc())
{
    for (PacketSink *sink : {recorder, decoder}) {
        if (sink)
            m_sinks.append(GuardedPacketSink(sink));
    }
    if (m_socket)
        connect(m_socket, &QIODevice::readyRead, this, &AudioDemuxer::read);
}

AudioDemuxer::~AudioDemuxer()
{
    av_packet_free(&m_packet);
    avcodec_parameters_free(&m_stream);
}

void AudioDemuxer::read()
{
    if (m_state == State::Unavailable) {
        // Nothing more is expected; whatever comes is not sound we could play.
        if (m_socket)
            m_socket->readAll();
        return;
    }
    if (m_socket)
        m_buffer.append(m_socket->readAll());
    if (m_state == State::AwaitingHeader && !parseHeader())
        return;
    if (m_state != State::Streaming || !m_packet)
        return;

    const auto *data = reinterpret_cast<const uchar *>(m_buffer.constData());
    const qsizetype available = m_buffer.size();
    qsizetype pos = 0;
    for (int pass = 0; pass < MaxPacketsPerRead; ++pass) {
        const PacketFraming::Entry entry = PacketFraming::next(data + pos, available - pos, MaxPayloadSize);
        if (entry.status == PacketFraming::Entry::NeedMore)
            break;
        if (entry.status == PacketFraming::Entry::BadSize || av_new_packet(m_packet, int(entry.size)) < 0) {
            pos += PacketFraming::HeaderSize;
            continue;
        }
        std::memcpy(m_packet->data, entry.payload, entry.size);
        pos += PacketFraming::HeaderSize + entry.size;

        // Opus timestamps go through whole: no flag bits are masked and no key flag is set.
        const bool config = entry.ptsAndFlags & PacketFraming::ConfigFlag;
        const qint64 pts = config ? AV_NOPTS_VALUE : qint64(entry.ptsAndFlags);
        m_packet->pts = pts;
        m_packet->dts = pts;

        for (qsizetype i = 0; i < m_sinks.size(); ++i)
            m_sinks.at(i).push(m_packet);
        av_packet_unref(m_packet);
    }
    m_buffer.remove(0, pos);
}

bool AudioDemuxer::parseHeader()
{
    if (m_buffer.size() < headerSize())
        return false;
    const auto *data = reinterpret_cast<const uchar *>(m_buffer.constData());
    if (m_deviceNameFirst) {
        const QByteArray name = m_buffer.left(DeviceNameSize);
        const qsizetype nul = name.indexOf('\0');
        m_deviceName = QString::fromUtf8(nul < 0 ? name : name.left(nul));
        data += DeviceNameSize;
    }
    m_codecId = qFromBigEndian<quint32>(data);
    m_buffer.remove(0, headerSize());
    m_state = State::Streaming;

    if (m_codecId == CodecDisabled) {
        giveUp(tr("Audio is not available on this phone (Android 11 or later)"));
        return false;
    }
    if (m_codecId == CodecError) {
        giveUp(tr("Audio capture failed on this phone"));
        return false;
    }
    describeStream();
    return true;
}

void AudioDemuxer::giveUp(const QString &message)
{
    m_state = State::Unavailable;
    m_buffer.clear();
    emit audioUnavailable(message);
}

void AudioDemuxer::describeStream()
{
    m_stream = avcodec_parameters_alloc();
    if (!m_stream)
        return;
    // The stream is always 48 kHz stereo Opus, whatever id it names.
    m_stream->codec_type = AVMEDIA_TYPE_AUDIO;
    m_stream->codec_id = AV_CODEC_ID_OPUS;
    m_stream->sample_rate = 48000;
    av_channel_layout_default(&m_stream->ch_layout, 2);
    for (const GuardedPacketSink &sink : std::as_const(m_sinks))
        sink.open(m_stream);
}
