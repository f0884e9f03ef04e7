#include "devicescreenshot.h"

#include "appowned.h"
#include "framehandoff.h"
#include "screenshotwriter.h"

#include <QFutureWatcher>
#include <QtConcurrent>

extern "C" {
#include <libavutil/frame.h>
}

DeviceScreenshot::DeviceScreenshot(FrameHandoff *frames, QObject *parent)
    : QObject(parent)
    , m_frames(frames)
    , m_writer(std::make_shared<ScreenshotWriter>())
{
}

DeviceScreenshot::~DeviceScreenshot() = default;

QThreadPool *DeviceScreenshot::workers()
{
    static AppOwned<QThreadPool> pool(
        [] {
            auto *created = new QThreadPool;
            created->setObjectName("ScreenshotWriter");
            created->setExpiryTimeout(-1);
            return created;
        },
        AppOwnedBase::Kind::Worker);
    return pool.get();
}

void DeviceScreenshot::take(const QString &serial)
{
    if (m_busy)
        return;
    m_serial = serial;
    m_busy = true;
    emit busyChanged();
    if (m_frames->isWatched() && m_frames->latest()) {
        save();
        return;
    }
    m_waitsForPicture = true;
    m_frames->addWatcher();
}

void DeviceScreenshot::pictureArrived()
{
    if (!m_waitsForPicture)
        return;
    m_waitsForPicture = false;
    m_frames->removeWatcher();
    save();
}

void DeviceScreenshot::sessionEnded()
{
    if (!m_waitsForPicture)
        return;
    m_waitsForPicture = false;
    m_frames->removeWatcher();
    end(false);
}

void DeviceScreenshot::save()
{
    const FrameHandoff::Frame frame = m_frames->latest();
    if (!frame) {
        end(false);
        return;
    }
    auto *watcher = new QFutureWatcher<bool>(this);
    connect(watcher, &QFutureWatcher<bool>::finished, this, [this, watcher] {
        watcher->deleteLater();
        end(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(workers(),
                                         [writer = m_writer, frame, folder = ScreenshotWriter::folder(), serial = m_serial] {
        QString path;
        return writer->save(frame.get(), folder, serial, &path);
    }));
}

void DeviceScreenshot::end(bool saved)
{
    m_busy = false;
    emit busyChanged();
    emit finished(saved);
}
