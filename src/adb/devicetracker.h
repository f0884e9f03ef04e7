#pragma once

#include "adbdeviceinfo.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

class QProcess;
class QTimer;

// Which phones adb lists as ready, kept current by one long-lived `adb track-devices -l`
// instead of a listing per event (adb does not report a Wi-Fi phone going offline on this stream,
// so sessions check their phone themselves when they end). The tracker comes back by itself (1 s, 2 s, ... 30 s apart)
// when adb ends, for example after the adb server was restarted.
class DeviceTracker : public QObject
{
    Q_OBJECT

public:
    static DeviceTracker *instance();
    explicit DeviceTracker(QObject *parent = nullptr);
    ~DeviceTracker() override;

    // Starts tracking if it is not running yet.
    void ensureStarted();
    void stop();
    // The last answer; kept while adb is away.
    QList<ADBDeviceInfo> devices() const { return m_devices; }
    bool isAttached(const QString &serial) const;

    // The pieces of the stream: each list is four hex digits of length, then that many bytes of
    // `adb devices -l` lines. Returns the complete lists found and keeps the rest in buffer.
    static QList<QByteArray> takeLists(QByteArray &buffer);

signals:
    void devicesChanged();

private:
    void start();
    void readLists();
    void handleFinished();

    QProcess *m_process = nullptr;
    QTimer *m_restartTimer;
    QByteArray m_buffer;
    QList<ADBDeviceInfo> m_devices;
    int m_restartDelayMs = 1000;
};
