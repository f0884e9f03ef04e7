#include "devicesettings.h"

#include "appconfig.h"
#include "jsonfile.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <algorithm>

DeviceSettings::DeviceSettings()
{
    reload();
}

DeviceSettings *DeviceSettings::instance()
{
    static DeviceSettings *settings = [] {
        auto *created = new DeviceSettings;
        // The adb listing may ask first, from a worker thread; QML binds to the object on the GUI
        // thread, so it must live there whichever thread created it.
        if (QCoreApplication::instance())
            created->moveToThread(QCoreApplication::instance()->thread());
        return created;
    }();
    return settings;
}


QString DeviceSettings::filePath() const
{
    return AppConfig::instance()->getDeviceNicknameSavePath() + "/device_nicknames.json";
}

void DeviceSettings::reload()
{
    m_nicknames.clear();
    const JsonFile::Loaded loaded = JsonFile::load(filePath(), "device_nicknames", QJsonValue::Object);
    m_saveBlocked = loaded.blocked;
    setFileMessage(loaded.message);
    bool leftOut = false;
    m_nicknames = nicknamesFrom(loaded.object, &leftOut);
    if (leftOut) {
        // The next save cannot write back what was left out; the file as it was stays beside it.
        const JsonFile::Loaded kept = JsonFile::keepCopyAside(filePath());
        m_saveBlocked = kept.blocked;
        setFileMessage(kept.message);
    }
}

QMap<QString, QString> DeviceSettings::nicknamesFrom(const QJsonObject &file, bool *leftOut)
{
    QMap<QString, QString> nicknames;
    const QJsonObject members = file.value("device_nicknames").toObject();
    if (leftOut)
        *leftOut = std::any_of(members.begin(), members.end(), [](const QJsonValue &v) { return !v.isString(); });
    for (auto it = members.begin(); it != members.end(); ++it) {
        const QString nickname = it.value().toString();
        if (it.value().isString() && !nickname.isEmpty())
            nicknames.insert(it.key(), nickname);
    }
    return nicknames;
}

void DeviceSettings::save()
{
    QJsonObject members;
    for (auto it = m_nicknames.cbegin(); it != m_nicknames.cend(); ++it)
        members.insert(it.key(), it.value());
    if (m_saveBlocked)
        return;
    // A failed write leaves the previous file in place and the nicknames in memory.
    const QString notSaved = JsonFile::notSavedMessage(filePath());
    if (!JsonFile::write(filePath(), QJsonObject{{"device_nicknames", members}}))
        setFileMessage(notSaved);
    else if (m_fileMessage == notSaved)
        setFileMessage({});
}

void DeviceSettings::setFileMessage(const QString &message)
{
    if (message == m_fileMessage)
        return;
    m_fileMessage = message;
    emit fileMessageChanged();
}

void DeviceSettings::sync()
{
    save();
}

QString DeviceSettings::getDeviceNickname(const QString &serial) const
{
    return m_nicknames.value(serial);
}

void DeviceSettings::setDeviceNickname(const QString &serial, const QString &nickname)
{
    if (serial.isEmpty())
        return;
    if (nickname.isEmpty()) {
        removeDeviceNickname(serial);
        return;
    }
    auto existing = m_nicknames.constFind(serial);
    if (existing != m_nicknames.cend() && existing.value() == nickname)
        return;
    m_nicknames.insert(serial, nickname);
    save();
    emit deviceNicknameChanged(serial, nickname);
}

void DeviceSettings::removeDeviceNickname(const QString &serial)
{
    if (!m_nicknames.remove(serial))
        return;
    save();
    emit deviceNicknameChanged(serial, QString());
}

void DeviceSettings::clearAllDeviceNicknames()
{
    const QStringList serials = m_nicknames.keys();
    m_nicknames.clear();
    save();
    for (const QString &serial : serials)
        emit deviceNicknameChanged(serial, QString());
}

QStringList DeviceSettings::getAllDeviceSerials() const
{
    return m_nicknames.keys();
}
