#include "mediapipeline.h"

#include "audiodecoder.h"
#include "mediaworker.h"

#include <QTcpSocket>
#include <QThread>

MediaPipeline::MediaPipeline(const QString &name, FrameHandoff *frames, QObject *parent)
    : QObject(parent)
    , m_thread(new QThread(this))
    , m_worker(new MediaWorker(frames))
{
    m_thread->setObjectName(name);
    m_worker->moveToThread(m_thread);
    connect(m_worker, &MediaWorker::videoEnded, this, &MediaPipeline::videoEnded);
    connect(m_worker, &MediaWorker::audioUnavailable, this, &MediaPipeline::audioUnavailable);
    m_thread->start();
}

MediaPipeline::~MediaPipeline()
{
    // The worker and what it owns are freed on their own thread, then the thread ends.
    QMetaObject::invokeMethod(m_worker, [worker = m_worker] { delete worker; }, Qt::BlockingQueuedConnection);
    m_thread->quit();
    m_thread->wait();
}

void MediaPipeline::startVideo(QTcpSocket *socket, const QList<PacketSink *> &probes)
{
    if (!socket)
        return;
    socket->moveToThread(m_thread);
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, socket, probes, recorder = m_recorder] {
        worker->startVideo(socket, probes, recorder);
    });
}

AudioDecoder *MediaPipeline::audioDecoder() const
{
    return m_audioDecoder.data();
}

void MediaPipeline::startAudio(QTcpSocket *socket, bool deviceNameFirst)
{
    if (!socket || m_audioDecoder)
        return;
    socket->moveToThread(m_thread);
    // Made here so that its address is known at once; it works on the media thread.
    auto *decoder = new AudioDecoder;
    decoder->moveToThread(m_thread);
    m_audioDecoder = decoder;
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, socket, decoder, deviceNameFirst, recorder = m_recorder] {
        worker->startAudio(socket, decoder, deviceNameFirst, recorder);
    });
}

void MediaPipeline::setDecodingPaused(bool paused)
{
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, paused] { worker->setDecodingPaused(paused); });
}
