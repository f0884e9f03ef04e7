#pragma once

#include <QObject>
#include <QString>

class Phone;

// The simulated scrcpy server 3.3.1: what `app_process / com.genymobile.scrcpy.Server ...` runs.
// The adb daemon creates one per shell command that launches it and relays `output` to that
// shell stream; `finished` ends the shell command with its exit code.
class SimServer : public QObject
{
    Q_OBJECT
public:
    // commandLine: the whole shell command, e.g.
    // "CLASSPATH=/data/local/tmp/scrcpy-server.jar app_process / com.genymobile.scrcpy.Server 3.3.1 video_bit_rate=..."
    SimServer(Phone *phone, const QString &commandLine, QObject *parent = nullptr);
    ~SimServer() override;

    // Checks the server file and the version, then connects back through the reverse tunnel.
    // Failures are reported through `output` and `finished`, like a real process.
    void start();

public slots:
    // The process dies: its sockets close and `finished` follows.
    void kill();

signals:
    void output(const QByteArray &text);
    void finished(int exitCode);
};
