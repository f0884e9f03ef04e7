#pragma once

#include "commandlineoptions.h"
#include "testpattern.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class AudioStreamer;
class ControlChannel;
class Phone;
class PhoneChannel;
class VideoStreamer;

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

private:
    enum class Stream { Video, Audio, Control };

    void connectNext();
    void handleOpened();
    void handleClosed(PhoneChannel *channel);
    void startStreams();
    QPointer<PhoneChannel> &channelFor(Stream stream);
    bool anyStreamOpen() const;
    void log(const QString &level, const QString &message);
    // Ends the process once: closes the sockets, journals why, and reports the exit code.
    void finish(const QString &reason, int exitCode, const QString &errorLine = {});
    void shutDownStreams();

    Phone *m_phone;
    QString m_commandLine;
    CommandLineOptions m_options;
    TestPattern m_pattern;
    QList<Stream> m_toConnect;
    QPointer<PhoneChannel> m_connecting;
    QPointer<PhoneChannel> m_video;
    QPointer<PhoneChannel> m_audio;
    QPointer<PhoneChannel> m_control;
    QList<QPointer<PhoneChannel>> m_connectOrder;
    VideoStreamer *m_videoStreamer = nullptr;
    AudioStreamer *m_audioStreamer = nullptr;
    ControlChannel *m_controlChannel = nullptr;
    bool m_started = false;
    bool m_finished = false;
};
