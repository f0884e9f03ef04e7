#pragma once

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QStringList>
#include <QTcpSocket>

#include <memory>

class DeviceMessageReceiver;
class QTcpServer;
class ServerParams;

// One launch of the server on a phone: pushes it, opens the local listener and the reverse
// tunnel, starts it through adb shell, and sorts its connections into video, audio and control
// sockets by arrival order. Used once; a new session makes a new one. The adb steps run on the
// adb pool: nothing here waits for adb on the caller's thread.
class ScrcpyServer : public QObject
{
    Q_OBJECT
public:
    // How many of the server's last output lines are kept to explain a failure.
    static constexpr int KeptOutputLines = 20;

    ScrcpyServer(QObject *parent, ServerParams *params);
    ~ScrcpyServer() override;

    // The server file pushed to each phone: KORVEL_SCRCPY_SERVER when set (tests, simulated phones),
    // else third_party/scrcpy-server beside the executable.
    static QString serverFile();

    // Starts the launch; launched() or stopped(-1) with startFailed(error) follow.
    void start();
    // Ends the session now; killing this session's server and removing its tunnel happen in the
    // background. Nothing is emitted afterwards.
    void stop();

    QTcpSocket *videoSocket() const { return m_videoSocket; }
    QTcpSocket *audioSocket() const { return m_audioSocket; }
    QTcpSocket *controlSocket() const { return m_controlSocket; }
    // Hands the socket over: the server forgets it (so it may move to another thread) and reports
    // its end no more.
    QTcpSocket *takeVideoSocket();
    QTcpSocket *takeAudioSocket();
    DeviceMessageReceiver *deviceMessageReceiver() const { return m_receiver; }
    ServerParams *params() const { return m_params; }
    // The server's last output lines, oldest first.
    QStringList lastOutput() const { return m_outputLines; }

signals:
    void launched();
    void startFailed(const QString &error);
    void output(const QByteArray &data);
    void stopped(int exitCode, QProcess::ExitStatus st);
    void controlSocketConnected();
    void videoSocketConnected();
    void videoSocketDisconnected();
    void controlSocketDisconnected();
    void audioSocketConnected();
    void audioSocketDisconnected();

private:
    struct Tunnel;

    void launch();
    void takeConnection();
    void keepOutput(const QByteArray &data);
    QTcpSocket *takeSocket(QPointer<QTcpSocket> &socket);

    ServerParams *m_params;
    QProcess *m_process;
    QTcpServer *m_listener;
    QPointer<QTcpSocket> m_videoSocket;
    QPointer<QTcpSocket> m_audioSocket;
    QPointer<QTcpSocket> m_controlSocket;
    DeviceMessageReceiver *m_receiver = nullptr;
    std::shared_ptr<Tunnel> m_tunnel;
    QStringList m_outputLines;
    QByteArray m_partialLine;
    bool m_videoArrived = false;
    bool m_audioArrived = false;
    bool m_controlArrived = false;
    bool m_stopped = false;
};
