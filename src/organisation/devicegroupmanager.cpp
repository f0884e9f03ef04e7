#include "devicegroupmanager.h"

#include "adbclient.h"
#include "adbpool.h"
#include "appconfig.h"
#include "device.h"
#include "devicegroup.h"
#include "devicetracker.h"
#include "jsonfile.h"

#include <QDir>
#include <QJsonArray>
#include <QSet>
#include <QtConcurrent>

DeviceGroupManager::DeviceGroupManager(QObject *parent)
    : QObject(parent)
    , m_scanWatcher(new QFutureWatcher<ScanResult>(this))
{
    load();
    if (m_deviceGroups.isEmpty()) {
        auto *group = new DeviceGroup(this);
        group->renameTo(tr("Default Group"));
        adopt(group);
        save();
    }
    m_currentSelectedGroup = m_deviceGroups.first();
    emit currentSelectedGroupChanged();
    connect(m_scanWatcher, &QFutureWatcher<ScanResult>::finished, this, &DeviceGroupManager::finishScan);
    connect(DeviceTracker::instance(), &DeviceTracker::devicesChanged, this, &DeviceGroupManager::refreshFromAdb);
}

DeviceGroupManager::~DeviceGroupManager()
{
    // The groups, removed ones included, end after this body has run; their last signals must not
    // reach a manager that is half gone. A scan still running only fills its own future.
    m_scanWatcher->disconnect(this);
    for (DeviceGroup *group : findChildren<DeviceGroup *>(Qt::FindDirectChildrenOnly))
        group->disconnect(this);
}

QString DeviceGroupManager::filePath()
{
    return QDir(AppConfig::instance()->getDeviceGroupSavePath()).filePath("device_groups.json");
}

int DeviceGroupManager::totalDeviceCount() const
{
    int total = 0;
    for (const DeviceGroup *group : m_deviceGroups)
        total += group->rowCount();
    return total;
}

void DeviceGroupManager::load()
{
    const QJsonArray groups = JsonFile::read(filePath()).value("device_groups").toArray();
    for (const QJsonValue &value : groups) {
        const QJsonObject element = value.toObject();
        const QString name = element.value("name").toString();
        if (name.isEmpty())
            continue;
        auto *group = new DeviceGroup(this);
        group->renameTo(name);
        if (element.contains("settings"))
            group->loadSettings(element.value("settings").toObject());
        adopt(group);
    }
}

void DeviceGroupManager::save() const
{
    QJsonArray groups;
    for (const DeviceGroup *group : m_deviceGroups)
        groups.append(QJsonObject{{"name", group->name()}, {"settings", group->settingsToJson()}});
    // A failed write leaves the previous file in place; there is nobody to tell.
    JsonFile::write(filePath(), QJsonObject{{"device_groups", groups}});
}

void DeviceGroupManager::adopt(DeviceGroup *group)
{
    connect(group, &DeviceGroup::deviceAddedIntoGroup, this, &DeviceGroupManager::refreshFromAdb);
    connect(group, &DeviceGroup::deviceRemovedFromGroup, this, &DeviceGroupManager::refreshFromAdb);
    connect(group, &DeviceGroup::nameChanged, this, [this] {
        save();
        emit deviceGroupsChanged();
    });
    connect(group, &DeviceGroup::settingsChanged, this, &DeviceGroupManager::save);
    m_deviceGroups.append(group);
}

void DeviceGroupManager::handleDeviceAdded(Device *)
{
    refreshFromAdb();
}

void DeviceGroupManager::handleDeviceRemoved(Device *)
{
    refreshFromAdb();
}

void DeviceGroupManager::createDeviceGroup(const QString &name)
{
    auto *group = new DeviceGroup(this);
    group->renameTo(name);
    adopt(group);
    save();
    emit deviceGroupsChanged();
}

void DeviceGroupManager::removeDeviceGroup(DeviceGroup *deviceGroup)
{
    m_deviceGroups.removeOne(deviceGroup);
    save();
    emit deviceGroupsChanged();
}

void DeviceGroupManager::setCurrentSelectedGroup(DeviceGroup *group)
{
    m_currentSelectedGroup = group;
    emit currentSelectedGroupChanged();
}

DeviceGroupManager::ScanResult DeviceGroupManager::listDevices()
{
    const QString text = AdbClient::run({"devices", "-l"});
    if (text.startsWith("[error]"))
        return {{}, text};
    return {AdbClient::parseDevices(text), {}};
}

void DeviceGroupManager::scanDevices()
{
    if (!m_isScanning) {
        m_isScanning = true;
        emit isScanningChanged();
    }
    m_scanWatcher->setFuture(QtConcurrent::run(&DeviceGroupManager::listDevices));
}

void DeviceGroupManager::finishScan()
{
    const ScanResult result = m_scanWatcher->future().resultCount() > 0 ? m_scanWatcher->result() : ScanResult{};
    if (result.error.isEmpty())
        refreshAvailableDevices(result.devices);
    else
        emit scanError(result.error);
    if (m_isScanning) {
        m_isScanning = false;
        emit isScanningChanged();
    }
}

void DeviceGroupManager::clearAvailableDevices()
{
    m_availableDeviceInfos.clear();
    emit availableDeviceInfosChanged();
}

void DeviceGroupManager::refreshFromAdb()
{
    refreshAvailableDevices(DeviceTracker::instance()->devices());
}

void DeviceGroupManager::refreshAvailableDevices(const QList<ADBDeviceInfo> &listed)
{
    QSet<QString> grouped;
    for (const DeviceGroup *group : std::as_const(m_deviceGroups)) {
        for (const Device *device : group->devices())
            grouped.insert(device->adbConnectionSerial());
    }
    QList<ADBDeviceInfo> available;
    for (const ADBDeviceInfo &info : listed) {
        if (!grouped.contains(info.adb_serial))
            available.append(info);
    }
    m_availableDeviceInfos = available;
    emit availableDeviceInfosChanged();
}

void DeviceGroupManager::restartADBServer()
{
    AdbPool::run(this, [] { return AdbClient::restartServer(); },
                 [this](bool restarted) { emit adbServerRestarted(restarted); });
}
