#pragma once

#include "adbdeviceinfo.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

class QProcess;
class QTimer;

// Which phones adb lists as ready: the one answer every session, offline cell and scan relies on.
// Kept current by one long-lived `adb track-devices -l` instead of a listing per event. adb does
// not report a Wi-Fi phone going offline on that stream, so whoever needs a fresh answer asks for
// a refresh (one `adb devices -l`). The tracker comes back by itself (1 s, 2 s, ... 30 s apart)
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
    // Asks adb for the listing now, in the background. Returns the number that refreshed() carries
    // once an answer given after this call has been taken; requests made while one runs share the
    // next one.
    quint64 refresh();

    // The pieces of the stream: each list is four hex digits of length, then that many bytes of
    // `adb devices -l` lines. Returns the complete lists found and keeps the rest in buffer.
    static QList<QByteArray> takeLists(QByteArray &buffer);

signals:
    void devicesChanged();
    // A refresh's answer is in devices(); every request numbered up to `answered` is served.
    void refreshed(quint64 answered);

private:
    void start();
    void readLists();
    void handleFinished();
    void runRefresh();

    QProcess *m_process = nullptr;
    QTimer *m_restartTimer;
    QByteArray m_buffer;
    QList<ADBDeviceInfo> m_devices;
    int m_restartDelayMs = 1000;
    // The last refresh asked for, the one under way (0 when none) and the last answered.
    quint64 m_refreshAsked = 0;
    quint64 m_refreshRunning = 0;
    quint64 m_refreshAnswered = 0;
};
