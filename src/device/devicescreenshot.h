#pragma once

#include <QObject>
#include <QString>

#include <memory>

class FrameHandoff;
class QThreadPool;
class ScreenshotWriter;

// One phone's screenshots: the newest picture saved as a JPEG off the GUI thread. A phone nobody
// looks at may show an old picture, so it decodes again until a fresh one comes.
class DeviceScreenshot : public QObject
{
    Q_OBJECT

public:
    DeviceScreenshot(FrameHandoff *frames, QObject *parent);
    ~DeviceScreenshot() override;

    bool busy() const { return m_busy; }
    // Starts one screenshot of a running session; the serial names the file. Ignored while busy.
    void take(const QString &serial);
    // The threads screenshots are encoded on, kept for the life of the application for the same
    // reason as the adb threads: a group's screenshots come in bursts.
    static QThreadPool *workers();
    // A new picture came.
    void pictureArrived();
    // The session ended: a screenshot still waiting for its picture fails.
    void sessionEnded();

signals:
    void busyChanged();
    void finished(bool saved);

private:
    void save();
    void end(bool saved);

    FrameHandoff *m_frames;
    // Shared with the running save, which may outlive this object.
    std::shared_ptr<ScreenshotWriter> m_writer;
    QString m_serial;
    bool m_busy = false;
    bool m_waitsForPicture = false;
};
