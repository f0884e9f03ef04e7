#include "adbjob.h"

#include "adbclient.h"

#include <atomic>

namespace {
std::atomic<int> commandTimeoutMs{30 * 1000};
std::atomic<int> transferTimeoutMs{300 * 1000};
// A logcat left running for hours keeps only its latest output for the verdict.
constexpr qsizetype kKeptOutput = 1 << 20;

void keepTail(QByteArray &buffer)
{
    if (buffer.size() > kKeptOutput)
        buffer.remove(0, buffer.size() - kKeptOutput);
}
}

AdbJob::AdbJob(const QStringList &args, AdbResult::Kind kind, QObject *parent)
    : QObject(parent)
    , m_args(args)
    , m_kind(kind)
{
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, [this] {
        m_timedOut = true;
        if (m_process)
            m_process->kill();
    });
}

AdbJob::~AdbJob()
{
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(1000);
    }
}

void AdbJob::setTimeouts(int commandMs, int transferMs)
{
    commandTimeoutMs = commandMs;
    transferTimeoutMs = transferMs;
}

int AdbJob::timeoutFor(AdbResult::Kind kind)
{
    return kind == AdbResult::Kind::Command ? commandTimeoutMs.load() : transferTimeoutMs.load();
}

void AdbJob::start()
{
    if (m_process || m_finished)
        return;
    if (m_cancelled) {
        finish({AdbResult::Status::Cancelled, tr("Cancelled"), {}});
        return;
    }
    m_process = new QProcess(this);
    connect(m_process, &QProcess::readyReadStandardOutput, this, [this] { read(QProcess::StandardOutput); });
    connect(m_process, &QProcess::readyReadStandardError, this, [this] { read(QProcess::StandardError); });
    connect(m_process, &QProcess::finished, this, &AdbJob::handleFinished);
    connect(m_process, &QProcess::errorOccurred, this, &AdbJob::handleError);
    m_process->start(AdbClient::program(), m_args);
    // adb waits for input on some commands ("shell" alone); it never gets any from us.
    m_process->closeWriteChannel();
    m_idle.start(timeout());
}

void AdbJob::cancel()
{
    if (m_finished || m_cancelled)
        return;
    m_cancelled = true;
    if (!m_process) {
        finish({AdbResult::Status::Cancelled, tr("Cancelled"), {}});
        return;
    }
    m_process->kill();
}

void AdbJob::read(QProcess::ProcessChannel channel)
{
    m_process->setReadChannel(channel);
    const QByteArray data = m_process->readAll();
    if (data.isEmpty())
        return;
    m_idle.start(timeout());
    QByteArray &buffer = channel == QProcess::StandardOutput ? m_out : m_err;
    buffer += data;
    keepTail(buffer);
    const QString text = channel == QProcess::StandardOutput ? m_outDecoder.decode(data) : m_errDecoder.decode(data);
    if (!text.isEmpty())
        emit output(text);
}

void AdbJob::handleFinished(int exitCode, QProcess::ExitStatus status)
{
    read(QProcess::StandardOutput);
    read(QProcess::StandardError);
    m_idle.stop();
    if (m_cancelled) {
        finish({AdbResult::Status::Cancelled, tr("Cancelled"), {}});
    } else if (m_timedOut) {
        const int seconds = timeout() / 1000;
        finish({AdbResult::Status::TimedOut, tr("No answer for %n second(s)", nullptr, seconds), {}});
    } else {
        finish(AdbResult::classify(m_kind, exitCode, status == QProcess::CrashExit, m_out, m_err));
    }
}

void AdbJob::handleError(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart)
        return;
    m_idle.stop();
    finish({AdbResult::Status::Failed, tr("Failed to start adb: %1").arg(m_process->errorString()), {}});
}

void AdbJob::finish(const AdbResult &result)
{
    if (m_finished)
        return;
    m_finished = true;
    emit finished(result);
}
