#pragma once

#include "adbresult.h"

#include <QObject>
#include <QProcess>
#include <QStringDecoder>
#include <QStringList>
#include <QTimer>

// One adb process run without blocking its thread. Standard input is closed at once, output is
// passed on as it arrives, and the time-out counts from the last output, so a command that keeps
// talking (a logcat) keeps running. Cancelling kills the process; `finished` comes once the
// process is gone, so nothing is left behind.
class AdbJob : public QObject
{
    Q_OBJECT
public:
    AdbJob(const QStringList &args, AdbResult::Kind kind, QObject *parent = nullptr);
    ~AdbJob() override;

    // Silence allowed before giving up, in milliseconds: commands, and pushes and installs.
    static void setTimeouts(int commandMs, int transferMs);
    static int timeoutFor(AdbResult::Kind kind);

    QStringList arguments() const { return m_args; }
    // A silence allowed for this job alone, instead of its kind's.
    void setTimeout(int milliseconds) { m_timeoutMs = milliseconds; }
    void start();
    void cancel();

signals:
    void output(const QString &text);
    void finished(const AdbResult &result);

private:
    void read(QProcess::ProcessChannel channel);
    void handleFinished(int exitCode, QProcess::ExitStatus status);
    void handleError(QProcess::ProcessError error);
    void finish(const AdbResult &result);
    int timeout() const { return m_timeoutMs > 0 ? m_timeoutMs : timeoutFor(m_kind); }

    QStringList m_args;
    AdbResult::Kind m_kind;
    int m_timeoutMs = 0;
    QProcess *m_process = nullptr;
    QTimer m_idle;
    QByteArray m_out;
    QByteArray m_err;
    QStringDecoder m_outDecoder{QStringDecoder::Utf8};
    QStringDecoder m_errDecoder{QStringDecoder::Utf8};
    bool m_cancelled = false;
    bool m_timedOut = false;
    bool m_finished = false;
};
