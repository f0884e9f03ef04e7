#pragma once

#include <QStringList>

// What the numbers were measured on, as Markdown list items.
class MachineInfo
{
public:
    static QStringList describe();

private:
    static QString firstLine(const QString &program, const QStringList &args);
    static QString procField(const QString &file, const QString &key);
};
