#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>

// Whether a phone whose session ended on its own is still there, and when it is back. The answer
// comes from the device tracker, which sees a USB phone return by itself; a Wi-Fi phone (an
// address:port serial) is also asked back with `adb connect` at growing intervals (1 s, 2 s,
// 4 s ... 30 s), since a restarted adb server does not know it any more.
class OfflineWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr int FirstDelayMs = 1000;
    static constexpr int MaxDelayMs = 30000;

    OfflineWatch(const QString &serial, QObject *parent = nullptr);

    bool offline() const { return m_offline; }
    QDateTime offlineSince() const { return m_offlineSince; }

    // The session ended without the user asking: adb is asked whether the phone is still listed.
    void sessionEnded();
    // A new session started: an answer still due about the old one no longer matters.
    void sessionStarted();

signals:
    void offlineChanged();
    // The session's end was the server's own: the phone is still listed.
    void stillListed();
    // The phone went away and is listed again.
    void backOnline();

private:
    void setOffline(bool offline);
    void tryAgain();
    void checkTracker();

    QString m_serial;
    QTimer m_timer;
    int m_delayMs = FirstDelayMs;
    bool m_offline = false;
    QDateTime m_offlineSince;
    // Counts session ends, so that a late answer about an earlier one is dropped.
    quint64 m_sessionEnd = 0;
};
