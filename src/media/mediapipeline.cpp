#include "mediapipeline.h"

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
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, socket, probes] { worker->startVideo(socket, probes); });
}

void MediaPipeline::setDecodingPaused(bool paused)
{
    QMetaObject::invokeMethod(m_worker, [worker = m_worker, paused] { worker->setDecodingPaused(paused); });
}
