#include "mediaworker.h"

#include "audiodecoder.h"
#include "audiodemuxer.h"
#include "framehandoff.h"
#include "mediarecorder.h"
#include "simpleaudioplayer.h"
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
    delete m_audioDemuxer;
    delete m_audioDecoder;
    delete m_audioPlayer;
    delete m_audioSocket;
    sws_freeContext(m_converter);
    av_frame_free(&m_converted);
}

void MediaWorker::startVideo(QTcpSocket *socket, const QList<PacketSink *> &probes, MediaRecorder *recorder)
{
    m_videoSocket = socket;
    m_videoDecoder = new VideoDecoder;
    connect(m_videoDecoder, &VideoDecoder::frameDecoded, this, &MediaWorker::publish);
    m_videoDemuxer = new VideoDemuxer(socket, recorder ? recorder->videoSink() : nullptr, m_videoDecoder);
    const int first = recorder ? 1 : 0;
    for (int i = 0; i < probes.size(); ++i)
        m_videoDemuxer->insertPacketSink(first + i, probes.at(i));
    connect(socket, &QTcpSocket::disconnected, this, &MediaWorker::videoEnded);
    // Bytes may have arrived before the socket moved here.
    if (socket->bytesAvailable() > 0)
        m_videoDemuxer->read();
}

void MediaWorker::startAudio(QTcpSocket *socket, AudioDecoder *decoder, bool deviceNameFirst,
                             MediaRecorder *recorder)
{
    m_audioSocket = socket;
    m_audioDecoder = decoder;
    m_audioDecoder->setDecodingPaused(m_decodingPaused);
    // The sink belongs to this thread, so it is made here; it never blocks this thread.
    m_audioPlayer = new SimpleAudioPlayer;
    connect(m_audioDecoder, &AudioDecoder::frameDecoded, m_audioPlayer,
            [player = m_audioPlayer](AVFrame *frame) { player->playFrame(frame); });
    const auto silence = [this](const QString &message) {
        m_audioPlayer->stop();
        emit audioUnavailable(message);
    };
    connect(m_audioDecoder, &AudioDecoder::unavailable, this, silence);
    m_audioDemuxer = new AudioDemuxer(socket, recorder ? recorder->audioSink() : nullptr, m_audioDecoder,
                                      deviceNameFirst);
    connect(m_audioDemuxer, &AudioDemuxer::audioUnavailable, this, silence);
    m_audioPlayer->start();
    if (socket->bytesAvailable() > 0)
        m_audioDemuxer->read();
}

void MediaWorker::setDecodingPaused(bool paused)
{
    // A phone seen nowhere is not heard either: with dozens of phones, only those on screen play.
    // The recorder still gets every packet, since it comes before the decoders.
    m_decodingPaused = paused;
    if (m_videoDecoder)
        m_videoDecoder->setDecodingPaused(paused);
    if (m_audioDecoder)
        m_audioDecoder->setDecodingPaused(paused);
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
