#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

// Waits for a phone that went away to be listed by adb again, asking at growing intervals
// (1 s, 2 s, 4 s ... 30 s). A Wi-Fi phone (an address:port serial) is reconnected on each try, since
// a restarted adb server does not know it any more.
class OfflineWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr int FirstDelayMs = 1000;
    static constexpr int MaxDelayMs = 30000;

    OfflineWatch(const QString &serial, QObject *parent = nullptr);

    // Starts asking, or goes on from the current interval when already waiting.
    void start();
    void stop();
    bool isWatching() const { return m_watching; }
    // The interval before the next try.
    int nextDelayMs() const { return m_delayMs; }

signals:
    void listed();

private:
    void check();

    QString m_serial;
    QTimer m_timer;
    int m_delayMs = FirstDelayMs;
    bool m_watching = false;
};
