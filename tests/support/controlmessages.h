#pragma once

#include "phonefixture.h"

// The control messages of one type that the fixture's phone with this serial has read, oldest first.
inline QList<QJsonObject> controlMessages(const PhoneFixture &fixture, const QString &serial, const QString &type)
{
    QList<QJsonObject> found;
    for (const auto &phone : fixture.phones()) {
        for (const QJsonObject &line : phone->serial() == serial ? phone->journal("control") : QList<QJsonObject>()) {
            if (line.value("type").toString() == type)
                found << line;
        }
    }
    return found;
}
