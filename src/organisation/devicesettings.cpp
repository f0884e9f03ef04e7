#include "devicesettings.h"

#include "appowned.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <algorithm>

DeviceSettings::DeviceSettings()
    : JsonStore("device_nicknames.json", "device_nicknames", QJsonValue::Object)
{
}

DeviceSettings *DeviceSettings::instance()
{
    static AppOwned<DeviceSettings> settings([] {
        auto *created = new DeviceSettings;
        // The adb listing may ask first, from a worker thread; QML binds to the object on the GUI
        // thread, so it must live there whichever thread created it.
        if (QCoreApplication::instance())
            created->moveToThread(QCoreApplication::instance()->thread());
        return created;
    });
    return settings.get();
}


void DeviceSettings::reload()
{
    bool leftOut = false;
    m_nicknames = nicknamesFrom(readFile(), &leftOut);
    // The next save cannot write back what was left out; the file as it was stays beside it.
    if (leftOut)
        keepCopyAside();
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
    writeFile(QJsonObject{{"device_nicknames", members}});
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
