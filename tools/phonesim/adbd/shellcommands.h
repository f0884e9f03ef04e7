#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class AdbDaemon;
class Phone;

// The phone's shell for everything except the server launch: runs one command line at once and
// returns what a real phone would print, with its exit code.
class ShellCommands
{
public:
    struct Result
    {
        QByteArray out;
        QByteArray err;
        int exitCode = 0;
    };

    explicit ShellCommands(AdbDaemon &daemon);

    Result run(const QString &commandLine);
    // Whether the line starts the mirroring server through app_process.
    static bool isServerLaunch(const QString &commandLine);

private:
    Result runCommand(QStringList words);
    Result getprop(const QStringList &args);
    Result wm(const QStringList &args);
    Result ip(const QStringList &args);
    Result ifconfig(const QStringList &args);
    Result pm(const QStringList &args);
    Result am(const QStringList &args);
    Result pkill(const QStringList &args);
    Result input(const QStringList &args);
    Result ls(const QStringList &args);
    Result cat(const QStringList &args);
    Result rm(const QStringList &args);

    QString devicePath(const QString &path) const;
    QString macAddress() const;
    static Result failure(const QString &text, int exitCode = 1);

    AdbDaemon &m_daemon;
    Phone &m_phone;
};
