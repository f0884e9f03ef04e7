#pragma once

#include <QJsonObject>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>


// The nickname the user gave each phone, keyed by adb serial, kept in device_nicknames.json.
class DeviceSettings : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString fileMessage READ fileMessage NOTIFY fileMessageChanged)

public:
    static DeviceSettings *instance();

    Q_INVOKABLE QString getDeviceNickname(const QString &serial) const;
    Q_INVOKABLE void setDeviceNickname(const QString &serial, const QString &nickname);
    Q_INVOKABLE void removeDeviceNickname(const QString &serial);
    Q_INVOKABLE void clearAllDeviceNicknames();
    Q_INVOKABLE QStringList getAllDeviceSerials() const;
    Q_INVOKABLE void sync();

    QString filePath() const;
    // The nicknames of the file's object: members whose value is a non-empty string.
    // leftOut, when given, tells whether a nickname could not be read (not a text).
    static QMap<QString, QString> nicknamesFrom(const QJsonObject &file, bool *leftOut = nullptr);
    // What went wrong with device_nicknames.json, for the user; empty when nothing did.
    QString fileMessage() const { return m_fileMessage; }
    // Reads the file again, dropping what is in memory; the application reads it once at start.
    void reload();

signals:
    void deviceNicknameChanged(const QString &serial, const QString &nickname);
    void fileMessageChanged();

private:
    DeviceSettings();
    void save();
    void setFileMessage(const QString &message);

    QMap<QString, QString> m_nicknames;
    QString m_fileMessage;
    // The file could be neither read nor moved aside: it is never replaced.
    bool m_saveBlocked = false;
};
