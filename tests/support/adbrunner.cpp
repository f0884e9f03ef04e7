#include "adbrunner.h"

#include <QElapsedTimer>
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

QProcess *AdbRunner::start(const QStringList &args) const
{
    auto *process = new QProcess;
    process->setProcessEnvironment(m_environment);
    process->start("adb", args);
    return process;
}

AdbRunner::Result AdbRunner::run(const QStringList &args, int timeoutMs) const
{
    QScopedPointer<QProcess> process(start(args));
    QElapsedTimer timer;
    timer.start();
    while (process->state() != QProcess::NotRunning && timer.elapsed() < timeoutMs)
        QTest::qWait(5);
    Result result;
    if (process->state() != QProcess::NotRunning) {
        process->kill();
        process->waitForFinished(2000);
        return result;
    }
    result.finished = process->exitStatus() == QProcess::NormalExit;
    result.exitCode = process->exitCode();
    result.out = process->readAllStandardOutput();
    result.err = process->readAllStandardError();
    return result;
}

bool AdbRunner::listed(const QString &serial, const QString &state) const
{
    const Result result = run({"devices"});
    const QList<QByteArray> lines = result.out.split('\n');
    for (const QByteArray &line : lines) {
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
