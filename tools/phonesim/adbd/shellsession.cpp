#include "shellsession.h"

#include "adbdaemon.h"
#include "adbstream.h"
#include "journal.h"
#include "phone.h"
#include "shellcommands.h"
#include "shellline.h"
#include "shellpacket.h"
#include "simserver.h"

#include <QDateTime>
#include <QTimer>

ShellSession::ShellSession(AdbDaemon &daemon, AdbStream *stream, const QByteArray &service)
    : QObject(stream)
    , m_daemon(daemon)
    , m_stream(stream)
{
    const int colon = service.indexOf(':');
    const QList<QByteArray> options = service.left(colon).split(',');
    m_command = QString::fromUtf8(service.mid(colon + 1));
    m_v2 = options.contains("v2");
    // Without an explicit choice adb asks for a terminal only for interactive shells.
    m_pty = options.contains("pty") || (!options.contains("raw") && m_command.isEmpty());
    if (options.first() == "exec")
        m_pty = false;
    connect(stream, &AdbStream::dataReceived, this, &ShellSession::received);
}

bool ShellSession::handles(const QByteArray &service)
{
    return service.startsWith("shell:") || service.startsWith("shell,") || service.startsWith("exec:");
}

void ShellSession::start()
{
    if (m_command.trimmed().isEmpty()) {
        sendOut(prompt());
        return;
    }
    runLine(m_command);
}

void ShellSession::runLine(const QString &commandLine)
{
    m_daemon.phone()->journal().write("shell", {{"command", commandLine}});
    if (ShellCommands::isServerLaunch(commandLine)) {
        startServer(commandLine);
        return;
    }
    // "adb logcat" arrives as: export ANDROID_LOG_TAGS="''"; exec logcat ...
    for (ShellLine::Command command : ShellLine::parse(commandLine)) {
        if (command.words.value(0) == "exec")
            command.words.removeFirst();
        if (command.words.value(0) == "logcat") {
            startLogcat(command.words);
            return;
        }
    }
    ShellCommands commands(m_daemon);
    const ShellCommands::Result result = commands.run(commandLine);
    sendOut(result.out);
    sendErr(result.err);
    if (m_command.trimmed().isEmpty()) {
        if (commandLine.trimmed() == "exit" || commandLine.trimmed().startsWith("exit "))
            finish(result.exitCode);
        else
            sendOut(prompt());
        return;
    }
    finish(result.exitCode);
}

void ShellSession::startServer(const QString &commandLine)
{
    auto *server = new SimServer(m_daemon.phone(), commandLine, &m_daemon);
    m_server = server;
    m_daemon.registerServer(server, commandLine);
    connect(server, &SimServer::output, this, &ShellSession::sendOut);
    connect(server, &SimServer::finished, this, &ShellSession::finish);
    connect(server, &SimServer::finished, server, &QObject::deleteLater);
    // The adb process on the PC went away: the server dies with its shell.
    connect(m_stream, &AdbStream::closed, server, &SimServer::kill);
    server->start();
}

void ShellSession::startLogcat(const QStringList &words)
{
    // A phone's log never ends by itself: lines keep coming until adb on the PC is killed,
    // except for a dump (-d), which prints what there is and exits.
    const bool dump = words.contains("-d");
    auto writeLine = [this] {
        const QString stamp = QDateTime::currentDateTime().toString("MM-dd hh:mm:ss.zzz");
        sendOut(QString("%1  1234  1234 I phonesim: log line %2\n").arg(stamp).arg(++m_logLines).toUtf8());
    };
    if (dump) {
        for (int i = 0; i < 3; ++i)
            writeLine();
        finish(0);
        return;
    }
    auto *ticker = new QTimer(this);
    connect(ticker, &QTimer::timeout, this, writeLine);
    ticker->start(50);
    writeLine();
}

void ShellSession::received(const QByteArray &data)
{
    if (!m_v2) {
        if (m_command.trimmed().isEmpty())
            interactiveInput(data);
        return;
    }
    m_inBuffer += data;
    for (;;) {
        quint8 id = 0;
        QByteArray payload;
        const auto taken = ShellPacket::take(m_inBuffer, &id, &payload);
        if (taken == ShellPacket::TakeResult::Incomplete)
            return;
        if (taken == ShellPacket::TakeResult::Malformed) {
            m_stream->close();
            return;
        }
        if (id == ShellPacket::Stdin && m_command.trimmed().isEmpty())
            interactiveInput(payload);
        else if (id == ShellPacket::CloseStdin && m_command.trimmed().isEmpty())
            finish(0);
        if (m_finished)
            return;
    }
}

void ShellSession::interactiveInput(const QByteArray &data)
{
    for (char c : data) {
        if (m_finished)
            return;
        if (c == '\r' || c == '\n') {
            if (m_pty)
                sendOut("\n");
            const QString commandLine = QString::fromUtf8(m_lineBuffer);
            m_lineBuffer.clear();
            if (commandLine.trimmed().isEmpty())
                sendOut(prompt());
            else
                runLine(commandLine);
            continue;
        }
        if (c == 0x04 && m_lineBuffer.isEmpty()) {   // Ctrl-D on an empty line
            finish(0);
            return;
        }
        m_lineBuffer.append(c);
        if (m_pty)
            sendOut(QByteArray(1, c));
    }
}

void ShellSession::sendOut(const QByteArray &data)
{
    if (data.isEmpty() || m_finished)
        return;
    // A terminal turns each newline into CR LF.
    QByteArray text = data;
    if (m_pty)
        text.replace("\r\n", "\n").replace("\n", "\r\n");
    m_stream->write(m_v2 ? ShellPacket::encode(ShellPacket::Stdout, text) : text);
}

void ShellSession::sendErr(const QByteArray &data)
{
    if (data.isEmpty() || m_finished)
        return;
    m_stream->write(m_v2 ? ShellPacket::encode(ShellPacket::Stderr, data) : data);
}

void ShellSession::finish(int exitCode)
{
    if (m_finished)
        return;
    if (m_v2)
        m_stream->write(ShellPacket::exitPacket(exitCode));
    m_finished = true;
    m_stream->close();
}

QByteArray ShellSession::prompt() const
{
    // Without a terminal sh prints no prompt.
    if (!m_pty)
        return {};
    return (m_daemon.phone()->profile().device + ":/ $ ").toUtf8();
}
