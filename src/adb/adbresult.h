#pragma once

#include <QByteArray>
#include <QString>

// What one adb step achieved, judged from adb's exit status and the phone's own answer: the
// package manager's "Success" or "Failure [CODE: ...]", never a word somewhere in the output.
class AdbResult
{
public:
    enum class Kind { Command, Push, Install };
    enum class Status { Done, Failed, TimedOut, Cancelled };

    Status status = Status::Done;
    // What the user reads in the phone's row: the answer, or why it failed.
    QString text;
    // The package manager's failure code, such as "INSTALL_FAILED_VERSION_DOWNGRADE".
    QString failureCode;

    bool ok() const { return status == Status::Done; }

    static AdbResult classify(Kind kind, int exitCode, bool crashed, const QByteArray &out, const QByteArray &err);
    // The step to use for a free-form command, from adb's subcommand: install (and its variants),
    // push, or a shell command that is itself "pm install" / "cmd package install" get the package
    // manager's or the transfer's rules and the long time-out.
    static Kind kindOf(const QStringList &args);
};
