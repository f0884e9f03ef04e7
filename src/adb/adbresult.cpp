#include "adbresult.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

namespace {
QStringList lines(const QByteArray &text)
{
    static const QRegularExpression lineBreak("\\r?\\n");
    QStringList result;
    for (const QString &line : QString::fromUtf8(text).split(lineBreak)) {
        if (!line.trimmed().isEmpty())
            result << line.trimmed();
    }
    return result;
}

AdbResult make(AdbResult::Status status, const QString &text, const QString &code = {})
{
    AdbResult result;
    result.status = status;
    result.text = text;
    result.failureCode = code;
    return result;
}

// "Failure [CODE]" or "Failure [CODE: message]" as the package manager prints it, also behind
// "adb: failed to install <file>: " when adb streamed the package itself.
bool packageFailure(const QString &line, QString *answer, QString *code)
{
    static const QRegularExpression failure("^Failure \\[([A-Za-z0-9_]+)[^\\]]*\\]?");
    static const QRegularExpression adbPrefix("^adb: failed to install .*?: (Failure \\[.*)$");
    QString text = line;
    const QRegularExpressionMatch prefixed = adbPrefix.match(line);
    if (prefixed.hasMatch())
        text = prefixed.captured(1);
    const QRegularExpressionMatch match = failure.match(text);
    if (!match.hasMatch())
        return false;
    *answer = text;
    *code = match.captured(1);
    return true;
}
}

AdbResult::Kind AdbResult::kindOf(const QStringList &args)
{
    // adb's own options come first, some with a value ("-s SERIAL"); the first other word is the
    // subcommand.
    static const QStringList withValue{"-s", "-t", "-H", "-P", "-L"};
    qsizetype at = 0;
    while (at < args.size() && args.at(at).startsWith('-'))
        at += withValue.contains(args.at(at)) ? 2 : 1;
    const QString subcommand = args.value(at);
    if (subcommand == "install" || subcommand == "install-multiple" || subcommand == "install-multi-package")
        return Kind::Install;
    if (subcommand == "push")
        return Kind::Push;
    if (subcommand != "shell")
        return Kind::Command;
    // The phone's shell splits the words again, so "pm install" may arrive as one argument.
    QStringList words = args.mid(at + 1).join(' ').split(' ', Qt::SkipEmptyParts);
    while (!words.isEmpty() && words.first().startsWith('-'))
        words.removeFirst();
    const bool pmInstall = words.value(0) == "pm" && words.value(1) == "install";
    const bool cmdInstall = words.value(0) == "cmd" && words.value(1) == "package" && words.value(2) == "install";
    return pmInstall || cmdInstall ? Kind::Install : Kind::Command;
}

AdbResult AdbResult::classify(Kind kind, int exitCode, bool crashed, const QByteArray &out, const QByteArray &err)
{
    const QStringList outLines = lines(out);
    const QStringList errLines = lines(err);
    if (crashed)
        return make(Status::Failed, QCoreApplication::translate("AdbResult", "adb ended abnormally"));

    if (kind == Kind::Install) {
        for (const QString &line : outLines + errLines) {
            QString answer;
            QString code;
            if (packageFailure(line, &answer, &code))
                return make(Status::Failed, answer, code);
        }
        const bool success = (outLines + errLines).contains(QStringLiteral("Success"));
        if (exitCode == 0 && success)
            return make(Status::Done, QStringLiteral("Success"));
        if (exitCode == 0)
            return make(Status::Failed, QCoreApplication::translate("AdbResult", "The package manager gave no answer"));
    }

    if (exitCode != 0) {
        // What the command printed before failing matters as much as its complaint.
        QString reason = (outLines + errLines).join('\n');
        if (reason.isEmpty())
            reason = QCoreApplication::translate("AdbResult", "adb exited with code %1").arg(exitCode);
        return make(Status::Failed, reason);
    }
    if (kind == Kind::Push)
        return make(Status::Done, outLines.isEmpty() ? QString() : outLines.last());
    return make(Status::Done, QString::fromUtf8(out + err));
}
