#pragma once

#include <QFile>
#include <QJsonObject>
#include <QString>

// Appends one JSON object per line to <data-dir>/journal.jsonl and flushes at once, so tests can
// read what reached the phone while it runs. Every line gets "time" (ms since epoch) and "serial".
class Journal
{
public:
    Journal(const QString &path, const QString &serial);
    void write(const QString &event, QJsonObject fields = {});
    QString path() const { return m_file.fileName(); }

private:
    QFile m_file;
    QString m_serial;
};
