#include "videodecoder.h"

#include "screenshotwriter.h"
#include "videodemuxer.h"

#include <QFutureWatcher>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

namespace {

struct ScreenshotResult
{
    bool saved = false;
    QString path;
};

} // namespace

VideoDecoder::VideoDecoder(QObject *parent)
    : QObject(parent)
    , m_frame(av_frame_alloc())
    , m_screenshotWriter(std::make_shared<ScreenshotWriter>())
{
}

VideoDecoder::~VideoDecoder()
{
    av_frame_free(&m_frame);
    av_frame_free(&m_lastFrame);
}

void VideoDecoder::setDemuxer(VideoDemuxer *demuxer)
{
    m_demuxer = demuxer;
}

void VideoDecoder::setDecodingPaused(bool paused)
{
    m_paused = paused;
}

void VideoDecoder::setScreenshotSerial(const QString &serial)
{
    m_serial = serial;
}

void VideoDecoder::decodePacket(const AVPacket *packet)
{
    if (m_paused || !m_frame)
        return;
    if (m_demuxer)
        m_codecContext = m_demuxer->sharedCodecContext();
    AVCodecContext *context = m_codecContext.get();
    if (!context)
        return;

    int result = avcodec_send_packet(context, packet);
    if (result == AVERROR(EAGAIN)) {
        drain(context);
        result = avcodec_send_packet(context, packet);
    }
    if (result < 0)
        return;
    drain(context);
}

void VideoDecoder::drain(AVCodecContext *context)
{
    while (avcodec_receive_frame(context, m_frame) >= 0) {
        if (m_frame->width > 0 && m_frame->height > 0) {
            if (!m_lastFrame)
                m_lastFrame = av_frame_alloc();
            else
                av_frame_unref(m_lastFrame);
            if (m_lastFrame)
                av_frame_ref(m_lastFrame, m_frame);
        }
        emit frameDecoded(m_frame);
        av_frame_unref(m_frame);
    }
}

void VideoDecoder::takeScreenshot()
{
    AVFrame *frame = nullptr;
    if (m_lastFrame) {
        frame = av_frame_alloc();
        if (frame && av_frame_ref(frame, m_lastFrame) < 0)
            av_frame_free(&frame);
    }
    QThreadPool *pool = QThreadPool::globalInstance();
    if (!frame || !pool) {
        av_frame_free(&frame);
        emit screenshotFinished(false, QString());
        return;
    }

    const QString folder = ScreenshotWriter::folder();
    auto task = [writer = m_screenshotWriter, frame, folder, serial = m_serial]() mutable {
        ScreenshotResult result;
        result.saved = writer->save(frame, folder, serial, &result.path);
        av_frame_free(&frame);
        return result;
    };
    // The watcher belongs to the decoder: if the decoder goes first, the task still frees its
    // frame but reports to nobody.
    auto *watcher = new QFutureWatcher<ScreenshotResult>(this);
    connect(watcher, &QFutureWatcher<ScreenshotResult>::finished, this, [this, watcher] {
        const ScreenshotResult result = watcher->result();
        watcher->deleteLater();
        emit screenshotFinished(result.saved, result.path);
    });
    watcher->setFuture(QtConcurrent::run(pool, std::move(task)));
}
