#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>

// Runs Debian's adb against a private adb server port without blocking the event loop, so a
// phone living in the test process itself can still answer.
class AdbRunner
{
public:
    struct Result
    {
        bool finished = false;
        int exitCode = -1;
        QByteArray out;
        QByteArray err;
    };

    explicit AdbRunner(quint16 serverPort);

    static bool available();
    Result run(const QStringList &args, int timeoutMs = 30000) const;
    // Whether `adb devices` lists serial in the given state ("device", "offline").
    bool listed(const QString &serial, const QString &state = "device") const;
    void killServer() const;

private:
    QProcessEnvironment m_environment;
};
