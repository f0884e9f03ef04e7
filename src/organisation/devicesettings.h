#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

// The nickname the user gave each phone, keyed by adb serial, kept in device_nicknames.json.
class DeviceSettings : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    static DeviceSettings *instance();
    static DeviceSettings *create(QQmlEngine *, QJSEngine *);

    Q_INVOKABLE QString getDeviceNickname(const QString &serial) const;
    Q_INVOKABLE void setDeviceNickname(const QString &serial, const QString &nickname);
    Q_INVOKABLE void removeDeviceNickname(const QString &serial);
    Q_INVOKABLE void clearAllDeviceNicknames();
    Q_INVOKABLE QStringList getAllDeviceSerials() const;
    Q_INVOKABLE void sync();

    QString filePath() const;
    // Reads the file again, dropping what is in memory; the application reads it once at start.
    void reload();

signals:
    void deviceNicknameChanged(const QString &serial, const QString &nickname);

private:
    DeviceSettings();
    void save();

    QMap<QString, QString> m_nicknames;
};
