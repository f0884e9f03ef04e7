#pragma once

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QTcpSocket>

class DeviceMessageReceiver;
class QTcpServer;
class ServerParams;

// One launch of the server on a phone: pushes it, opens the local listener and the reverse
// tunnel, starts it through adb shell, and sorts its connections into video, audio and control
// sockets by arrival order. Used once; a new session makes a new one.
class ScrcpyServer : public QObject
{
    Q_OBJECT
public:
    ScrcpyServer(QObject *parent, ServerParams *params);
    ~ScrcpyServer() override;

    bool start();
    void stop();

    QTcpSocket *videoSocket() const { return m_videoSocket; }
    QTcpSocket *audioSocket() const { return m_audioSocket; }
    QTcpSocket *controlSocket() const { return m_controlSocket; }
    DeviceMessageReceiver *deviceMessageReceiver() const { return m_receiver; }
    ServerParams *params() const { return m_params; }

signals:
    void output(const QByteArray &data);
    void stopped(int exitCode, QProcess::ExitStatus st);
    void controlSocketConnected();
    void videoSocketConnected();
    void videoSocketDisconnected();
    void controlSocketDisconnected();
    void audioSocketConnected();
    void audioSocketDisconnected();

private:
    void takeConnection();

    ServerParams *m_params;
    QProcess *m_process;
    QTcpServer *m_listener;
    QPointer<QTcpSocket> m_videoSocket;
    QPointer<QTcpSocket> m_audioSocket;
    QPointer<QTcpSocket> m_controlSocket;
    DeviceMessageReceiver *m_receiver = nullptr;
    bool m_stopped = false;
};
