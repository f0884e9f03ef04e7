#include "framehandoff.h"

#include <QMetaObject>
#include <QMutexLocker>

extern "C" {
#include <libavutil/frame.h>
}

FrameHandoff::FrameHandoff(QObject *parent)
    : QObject(parent)
{
}

void FrameHandoff::publish(const AVFrame *frame)
{
    AVFrame *copy = av_frame_alloc();
    if (!copy || av_frame_ref(copy, frame) < 0) {
        av_frame_free(&copy);
        return;
    }
    Frame shared(copy, [](const AVFrame *f) {
        AVFrame *owned = const_cast<AVFrame *>(f);
        av_frame_free(&owned);
    });
    {
        QMutexLocker locker(&m_mutex);
        m_frame.swap(shared);
        ++m_serial;
    }
    ++m_published;
    notify();
    // The replaced picture is released here, outside the lock.
}

void FrameHandoff::clear()
{
    Frame old;
    {
        QMutexLocker locker(&m_mutex);
        m_frame.swap(old);
        ++m_serial;
    }
    notify();
}

FrameHandoff::Frame FrameHandoff::latest(quint64 *serial) const
{
    QMutexLocker locker(&m_mutex);
    if (serial)
        *serial = m_serial.load();
    return m_frame;
}

void FrameHandoff::notify()
{
    if (m_notifyPending.exchange(true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_notifyPending = false;
            emit frameAvailable();
        },
        Qt::QueuedConnection);
}

void FrameHandoff::addWatcher()
{
    if (++m_watchers == 1)
        emit watchedChanged(true);
}

void FrameHandoff::removeWatcher()
{
    if (m_watchers <= 0)
        return;
    if (--m_watchers == 0)
        emit watchedChanged(false);
}
