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
    if (args.contains("install") || args.contains("install-multiple"))
        return Kind::Install;
    if (args.contains("push"))
        return Kind::Push;
    return Kind::Command;
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
        QString reason = errLines.join('\n');
        if (reason.isEmpty())
            reason = outLines.join('\n');
        if (reason.isEmpty())
            reason = QCoreApplication::translate("AdbResult", "adb exited with code %1").arg(exitCode);
        return make(Status::Failed, reason);
    }
    if (kind == Kind::Push)
        return make(Status::Done, outLines.isEmpty() ? QString() : outLines.last());
    return make(Status::Done, QString::fromUtf8(out + err));
}
