#include "adbrunner.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

AdbRunner::AdbRunner(quint16 serverPort)
    : m_environment(QProcessEnvironment::systemEnvironment())
{
    m_environment.insert("ANDROID_ADB_SERVER_PORT", QString::number(serverPort));
}

bool AdbRunner::available()
{
    return !QStandardPaths::findExecutable("adb").isEmpty();
}

AdbRunner::Result AdbRunner::run(const QStringList &args, int timeoutMs) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start("adb", args);
    Result result;
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, timeoutMs)) {
        process.kill();
        process.waitForFinished(2000);
        return result;
    }
    result.finished = process.exitStatus() == QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

bool AdbRunner::listed(const QString &serial, const QString &state) const
{
    for (const QByteArray &line : run({"devices"}).out.split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words.size() >= 2 && words.at(0) == serial.toUtf8() && words.at(1) == state.toUtf8())
            return true;
    }
    return false;
}

void AdbRunner::killServer() const
{
    run({"kill-server"}, 10000);
}
