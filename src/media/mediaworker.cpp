#include "mediaworker.h"

#include "framehandoff.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QTcpSocket>

extern "C" {
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

MediaWorker::MediaWorker(FrameHandoff *frames)
    : m_frames(frames)
{
}

MediaWorker::~MediaWorker()
{
    delete m_videoDemuxer;
    delete m_videoDecoder;
    delete m_videoSocket;
    sws_freeContext(m_converter);
    av_frame_free(&m_converted);
}

void MediaWorker::startVideo(QTcpSocket *socket, const QList<PacketSink *> &probes)
{
    m_videoSocket = socket;
    m_videoDecoder = new VideoDecoder;
    connect(m_videoDecoder, &VideoDecoder::frameDecoded, this, &MediaWorker::publish);
    m_videoDemuxer = new VideoDemuxer(socket, nullptr, m_videoDecoder);
    for (int i = 0; i < probes.size(); ++i)
        m_videoDemuxer->insertPacketSink(i, probes.at(i));
    m_videoDecoder->setDemuxer(m_videoDemuxer);
    connect(socket, &QTcpSocket::disconnected, this, &MediaWorker::videoEnded);
    // Bytes may have arrived before the socket moved here.
    if (socket->bytesAvailable() > 0)
        m_videoDemuxer->read();
}

void MediaWorker::setDecodingPaused(bool paused)
{
    if (m_videoDecoder)
        m_videoDecoder->setDecodingPaused(paused);
}

void MediaWorker::publish(AVFrame *frame)
{
    if (!frame || frame->width <= 0 || frame->height <= 0)
        return;
    if (frame->format == AV_PIX_FMT_YUV420P || frame->format == AV_PIX_FMT_YUVJ420P) {
        m_frames->publish(frame);
        return;
    }
    // Any other layout is converted once here rather than on the render thread.
    m_converter = sws_getCachedContext(m_converter, frame->width, frame->height, AVPixelFormat(frame->format),
                                       frame->width, frame->height, AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr,
                                       nullptr, nullptr);
    if (!m_converter)
        return;
    av_frame_free(&m_converted);
    m_converted = av_frame_alloc();
    if (!m_converted)
        return;
    m_converted->format = AV_PIX_FMT_YUV420P;
    m_converted->width = frame->width;
    m_converted->height = frame->height;
    if (av_frame_get_buffer(m_converted, 0) < 0)
        return;
    if (sws_scale(m_converter, frame->data, frame->linesize, 0, frame->height, m_converted->data,
                  m_converted->linesize) != frame->height)
        return;
    m_frames->publish(m_converted);
}
