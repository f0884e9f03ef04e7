#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Splits a shell command line the way the phone's sh would for simple cases: words with single
// and double quotes and backslashes, and commands joined by ";", "&&" or "||".
class ShellLine
{
public:
    struct Command
    {
        QString joiner;   // "", ";", "&&" or "||": how this command follows the previous one
        QStringList words;
    };

    // ok is false for an unterminated quote.
    static QList<Command> parse(const QString &line, bool *ok = nullptr);
};
