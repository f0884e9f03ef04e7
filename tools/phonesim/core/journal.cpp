#include "journal.h"

#include <QDateTime>
#include <QJsonDocument>

Journal::Journal(const QString &path, const QString &serial)
    : m_file(path)
    , m_serial(serial)
{
    m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
}

void Journal::write(const QString &event, QJsonObject fields)
{
    fields.insert("event", event);
    fields.insert("serial", m_serial);
    fields.insert("time", QDateTime::currentMSecsSinceEpoch());
    m_file.write(QJsonDocument(fields).toJson(QJsonDocument::Compact));
    m_file.write("\n");
    m_file.flush();
}
