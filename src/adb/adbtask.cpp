#include "adbtask.h"

#include "adbjob.h"

#include <QFileInfo>
#include <QUuid>

#include <atomic>

namespace {
std::atomic<quint64> lastId{0};
}

AdbTask::AdbTask(const QList<Step> &steps, QObject *parent)
    : QObject(parent)
    , m_steps(steps)
    , m_id(++lastId)
{
}

QList<AdbTask::Step> AdbTask::commandSteps(const QString &serial, const QString &input)
{
    QList<Step> steps;
    for (const QString &rawLine : input.split('\n')) {
        const QString line = rawLine.trimmed();
        if (line.isEmpty())
            continue;
        const QStringList args = QStringList{"-s", serial} + line.split(' ', Qt::SkipEmptyParts);
        steps.append({args, AdbResult::kindOf(args), false, false});
    }
    return steps;
}

QList<AdbTask::Step> AdbTask::installSteps(const QString &serial, const QString &localApk)
{
    // The phone only ever sees a name of our own making, so the user's file name can hold any
    // character without reaching the phone's shell.
    const QString remote = QString(installFolder) + "korvel-"
        + QUuid::createUuid().toString(QUuid::WithoutBraces) + ".apk";
    return {
        {{"-s", serial, "push", localApk, remote}, AdbResult::Kind::Push, true, false},
        {{"-s", serial, "shell", "pm", "install", "-r", remote}, AdbResult::Kind::Install, true, false},
        {{"-s", serial, "shell", "rm", "-f", remote}, AdbResult::Kind::Command, false, true},
    };
}

QList<AdbTask::Step> AdbTask::uploadSteps(const QString &serial, const QString &localFile)
{
    // The sync protocol carries the remote name as it is; no shell parses it.
    const QString remote = QString(uploadFolder) + QFileInfo(localFile).fileName();
    return {{{"-s", serial, "push", localFile, remote}, AdbResult::Kind::Push, true, false}};
}

void AdbTask::start()
{
    if (m_started || m_finished)
        return;
    m_started = true;
    emit started();
    runStep();
}

void AdbTask::cancel()
{
    // Once the verdict is out only clean-up is left, and it runs to its end.
    if (m_finished || m_cancelled)
        return;
    m_cancelled = true;
    m_result = {AdbResult::Status::Cancelled, tr("Cancelled"), {}};
    finish();
    if (!m_started) {
        // Nothing ran, so there is nothing to clean up either.
        m_next = int(m_steps.size());
        emit ended();
        return;
    }
    if (m_job)
        m_job->cancel();
}

void AdbTask::runStep()
{
    while (m_next < m_steps.size() && (m_failed || m_cancelled) && !m_steps.at(m_next).cleanup)
        ++m_next;
    // Only clean-up is left: the verdict no longer waits for it.
    if (m_next >= m_steps.size() || m_steps.at(m_next).cleanup)
        finish();
    if (m_next >= m_steps.size()) {
        emit ended();
        return;
    }
    const Step &step = m_steps.at(m_next++);
    m_job = new AdbJob(step.args, step.kind, this);
    if (step.cleanup) {
        m_job->setTimeout(cleanupTimeoutMs);
    } else {
        connect(m_job, &AdbJob::output, this, &AdbTask::output);
    }
    connect(m_job, &AdbJob::finished, this, &AdbTask::stepFinished);
    m_job->start();
}

void AdbTask::stepFinished(const AdbResult &result)
{
    const Step &step = m_steps.at(m_next - 1);
    m_job->deleteLater();
    if (!step.cleanup && !m_finished) {
        if (step.kind == AdbResult::Kind::Command) {
            m_commandOutput += result.text;
            if (!result.text.endsWith('\n'))
                m_commandOutput += '\n';
        }
        // The first failure is the verdict; later lines of a command still run and report.
        if (!m_hasFailure)
            m_result = result;
        if (!result.ok()) {
            m_hasFailure = true;
            m_failed = m_failed || step.stopOnFailure || result.status == AdbResult::Status::TimedOut;
        }
    }
    runStep();
}

void AdbTask::finish()
{
    if (m_finished)
        return;
    m_finished = true;
    AdbResult result = m_result;
    // A time-out keeps its reason: what the lines printed has already streamed out.
    if (!m_commandOutput.isEmpty() && !m_cancelled && result.status != AdbResult::Status::TimedOut)
        result.text = m_commandOutput;
    emit finished(result);
}
