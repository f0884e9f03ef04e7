#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

class AdbDaemon;
class AdbStream;
class SimServer;

// One "shell:" or "shell,v2,...:" stream. With the v2 protocol stdout, stderr and the exit code
// travel apart; the raw form merges the output and just closes. An empty command is an
// interactive shell that reads command lines from stdin.
class ShellSession : public QObject
{
    Q_OBJECT
public:
    // service: the OPEN destination, e.g. "shell,v2,TERM=xterm,raw:getprop ro.serialno".
    ShellSession(AdbDaemon &daemon, AdbStream *stream, const QByteArray &service);

    // Whether the destination names a shell service this session understands.
    static bool handles(const QByteArray &service);
    void start();

private:
    void runLine(const QString &commandLine);
    void startServer(const QString &commandLine);
    void startLogcat(const QStringList &words);
    void received(const QByteArray &data);
    void interactiveInput(const QByteArray &data);
    void sendOut(const QByteArray &data);
    void sendErr(const QByteArray &data);
    void finish(int exitCode);
    QByteArray prompt() const;

    AdbDaemon &m_daemon;
    AdbStream *m_stream;
    bool m_v2 = false;
    bool m_pty = false;
    QString m_command;
    QByteArray m_inBuffer;
    QByteArray m_lineBuffer;
    QPointer<SimServer> m_server;
    bool m_finished = false;
    int m_logLines = 0;
};
