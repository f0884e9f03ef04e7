#include "annexbfileplayer.h"

#include <QFile>

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace {

const QByteArray startCode("\x00\x00\x00\x01", 4);

enum NalType { Slice = 1, IdrSlice = 5, Sei = 6, Sps = 7, Pps = 8, AccessUnitDelimiter = 9 };

int nalType(const QByteArray &nal)
{
    return nal.isEmpty() ? 0 : (quint8(nal[0]) & 0x1f);
}

bool isSlice(int type)
{
    return type >= Slice && type <= IdrSlice;
}

// first_mb_in_slice is the first field after the header; an exp-Golomb 0 is the single bit 1.
bool startsPicture(const QByteArray &nal)
{
    return nal.size() > 1 && (quint8(nal[1]) & 0x80);
}

} // namespace

QList<QByteArray> AnnexBFilePlayer::splitNalUnits(const QByteArray &stream)
{
    QList<QByteArray> units;
    qsizetype begin = -1;
    qsizetype i = 0;
    const qsizetype n = stream.size();
    auto finish = [&](qsizetype end) {
        if (begin < 0)
            return;
        // Zero bytes before a start code belong to the start code, not to the NAL unit.
        while (end > begin && stream[end - 1] == '\0')
            --end;
        if (end > begin)
            units << stream.mid(begin, end - begin);
    };
    while (i + 2 < n) {
        if (stream[i] == '\0' && stream[i + 1] == '\0' && stream[i + 2] == '\1') {
            finish(i);
            i += 3;
            begin = i;
        } else {
            ++i;
        }
    }
    finish(n);
    return units;
}

QList<AnnexBFilePlayer::AccessUnit> AnnexBFilePlayer::groupAccessUnits(const QList<QByteArray> &nalUnits,
                                                                         QByteArray *config)
{
    QList<AccessUnit> units;
    AccessUnit current;
    bool currentHasSlice = false;
    QList<QByteArray> parameterSets;
    auto flush = [&] {
        if (currentHasSlice)
            units << current;
        current = AccessUnit();
        currentHasSlice = false;
    };
    for (const QByteArray &nal : nalUnits) {
        const int type = nalType(nal);
        const bool opensUnit = type == Sei || type == Sps || type == Pps || type == AccessUnitDelimiter
                               || (type >= 14 && type <= 18) || (isSlice(type) && startsPicture(nal));
        if (currentHasSlice && opensUnit)
            flush();
        if (type == Sps || type == Pps) {
            if (!parameterSets.contains(nal))
                parameterSets << nal;
            continue;
        }
        current.data += startCode + nal;
        if (isSlice(type))
            currentHasSlice = true;
        if (type == IdrSlice)
            current.keyFrame = true;
    }
    flush();
    config->clear();
    for (const QByteArray &nal : std::as_const(parameterSets))
        *config += startCode + nal;
    return units;
}

bool AnnexBFilePlayer::load(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QString("cannot read the stream file %1: %2").arg(path, file.errorString());
        return false;
    }
    m_units = groupAccessUnits(splitNalUnits(file.readAll()), &m_config);
    m_position = 0;
    if (m_units.isEmpty() || m_config.isEmpty()) {
        *error = QString("%1 holds no H.264 Annex B pictures with SPS and PPS").arg(path);
        return false;
    }
    m_size = probeSize(m_config, m_units);
    if (!m_size.isValid()) {
        *error = QString("the H.264 decoder cannot read the pictures of %1").arg(path);
        return false;
    }
    return true;
}

const AnnexBFilePlayer::AccessUnit &AnnexBFilePlayer::next()
{
    const AccessUnit &unit = m_units.at(m_position);
    m_position = (m_position + 1) % m_units.size();
    return unit;
}

QSize AnnexBFilePlayer::probeSize(const QByteArray &config, const QList<AccessUnit> &units)
{
    const AVCodec *codec = avcodec_find_decoder(AV_CODEC_ID_H264);
    AVCodecContext *context = codec ? avcodec_alloc_context3(codec) : nullptr;
    AVPacket *packet = av_packet_alloc();
    AVFrame *frame = av_frame_alloc();
    QSize size;
    if (context && packet && frame && avcodec_open2(context, codec, nullptr) == 0) {
        const int count = int(std::min<qsizetype>(units.size(), 16));
        for (int i = 0; i <= count && !size.isValid(); ++i) {
            if (i == count) {
                avcodec_send_packet(context, nullptr); // flush what the decoder holds back
            } else {
                // The parameter sets go in front of the first picture.
                const QByteArray data = i == 0 ? config + units[0].data : units[i].data;
                if (av_new_packet(packet, int(data.size())) == 0) {
                    memcpy(packet->data, data.constData(), size_t(data.size()));
                    avcodec_send_packet(context, packet);
                    av_packet_unref(packet);
                }
            }
            while (!size.isValid() && avcodec_receive_frame(context, frame) == 0)
                size = QSize(frame->width, frame->height);
        }
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&context);
    return size;
}
