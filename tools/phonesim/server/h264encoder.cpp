#include "h264encoder.h"

#include <algorithm>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/error.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace {

QString avError(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

} // namespace

H264Encoder::~H264Encoder()
{
    close();
}

bool H264Encoder::open(const QSize &size, int bitRate, int fps, QString *error)
{
    close();
    const AVCodec *codec = avcodec_find_encoder_by_name("libx264");
    if (!codec) {
        *error = "the libx264 encoder is not available in this FFmpeg";
        return false;
    }
    m_context = avcodec_alloc_context3(codec);
    m_frame = av_frame_alloc();
    m_packet = av_packet_alloc();
    if (!m_context || !m_frame || !m_packet) {
        *error = "out of memory setting up the H.264 encoder";
        close();
        return false;
    }
    m_context->width = size.width();
    m_context->height = size.height();
    m_context->pix_fmt = AV_PIX_FMT_YUV420P;
    m_context->time_base = AVRational{1, 1000000};
    m_context->framerate = AVRational{fps, 1};
    m_context->bit_rate = bitRate;
    // A phone sends a key frame every few seconds, and on request.
    m_context->gop_size = fps * 10;
    m_context->max_b_frames = 0;
    m_context->thread_count = 1;
    m_context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    AVDictionary *options = nullptr;
    av_dict_set(&options, "preset", "ultrafast", 0);
    av_dict_set(&options, "tune", "zerolatency", 0);
    av_dict_set(&options, "forced-idr", "1", 0);
    const int result = avcodec_open2(m_context, codec, &options);
    av_dict_free(&options);
    if (result < 0) {
        *error = "cannot open the H.264 encoder: " + avError(result);
        close();
        return false;
    }
    m_frame->width = size.width();
    m_frame->height = size.height();
    m_frame->format = AV_PIX_FMT_YUV420P;
    if (av_frame_get_buffer(m_frame, 0) < 0) {
        *error = "out of memory for the encoder's picture";
        close();
        return false;
    }
    m_converter = sws_getContext(size.width(), size.height(), AV_PIX_FMT_RGB32, size.width(), size.height(),
                                 AV_PIX_FMT_YUV420P, SWS_POINT, nullptr, nullptr, nullptr);
    if (!m_converter) {
        *error = "cannot set up the RGB to YUV conversion";
        close();
        return false;
    }
    m_config = QByteArray(reinterpret_cast<const char *>(m_context->extradata), m_context->extradata_size);
    m_size = size;
    m_lastPts = -1;
    return true;
}

void H264Encoder::close()
{
    avcodec_free_context(&m_context);
    av_frame_free(&m_frame);
    av_packet_free(&m_packet);
    sws_freeContext(m_converter);
    m_converter = nullptr;
    m_config.clear();
    m_size = QSize();
}

bool H264Encoder::encode(const QImage &image, qint64 ptsUs, QList<Packet> *packets)
{
    if (!m_context || image.size() != m_size)
        return false;
    const QImage rgb = image.format() == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_RGB32);
    if (av_frame_make_writable(m_frame) < 0)
        return false;
    const uint8_t *source[1] = {rgb.constBits()};
    const int sourceStride[1] = {int(rgb.bytesPerLine())};
    sws_scale(m_converter, source, sourceStride, 0, m_size.height(), m_frame->data, m_frame->linesize);
    m_lastPts = std::max(ptsUs, m_lastPts + 1);
    m_frame->pts = m_lastPts;
    if (avcodec_send_frame(m_context, m_frame) < 0)
        return false;
    while (avcodec_receive_packet(m_context, m_packet) == 0) {
        packets->append(Packet{QByteArray(reinterpret_cast<const char *>(m_packet->data), m_packet->size),
                               m_packet->pts, (m_packet->flags & AV_PKT_FLAG_KEY) != 0});
        av_packet_unref(m_packet);
    }
    return true;
}
