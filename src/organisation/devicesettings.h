#pragma once

#include "jsonstore.h"

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

// The nickname the user gave each phone, keyed by adb serial, kept in device_nicknames.json.
class DeviceSettings : public JsonStore
{
    Q_OBJECT

public:
    static DeviceSettings *instance();

    Q_INVOKABLE QString getDeviceNickname(const QString &serial) const;
    Q_INVOKABLE void setDeviceNickname(const QString &serial, const QString &nickname);
    Q_INVOKABLE void removeDeviceNickname(const QString &serial);
    Q_INVOKABLE void clearAllDeviceNicknames();
    Q_INVOKABLE QStringList getAllDeviceSerials() const;
    Q_INVOKABLE void sync();

    // The nicknames of the file's object: members whose value is a non-empty string.
    // leftOut, when given, tells whether a nickname could not be read (not a text).
    static QMap<QString, QString> nicknamesFrom(const QJsonObject &file, bool *leftOut = nullptr);
    // Reads the file again, dropping what is in memory; the application reads it once at start,
    // once it has given the folder.
    void reload();

signals:
    void deviceNicknameChanged(const QString &serial, const QString &nickname);

private:
    DeviceSettings();
    void save();

    QMap<QString, QString> m_nicknames;
};
