#include "devicegroupmanager.h"

#include "adbclient.h"
#include "adbpool.h"
#include "device.h"
#include "devicegroup.h"
#include "devicesettings.h"
#include "devicetracker.h"

#include <QJsonArray>
#include <QSet>
#include <QtConcurrent>

namespace {
QString folderForNewManagers;
bool startRackAtLaunch = false;
}

void DeviceGroupManager::setStartRackAtLaunch(bool start)
{
    startRackAtLaunch = start;
}

void DeviceGroupManager::setDefaultFolder(const QString &folder)
{
    folderForNewManagers = folder;
}

QString DeviceGroupManager::defaultFolder()
{
    return folderForNewManagers;
}

DeviceGroupManager::DeviceGroupManager(QObject *parent)
    : JsonStore("device_groups.json", "device_groups", QJsonValue::Array, parent)
    , m_scanWatcher(new QFutureWatcher<ScanResult>(this))
{
    setFolder(folderForNewManagers);
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
    // The remembered phones that are attached now come back without waiting for a scan.
    const bool remembersPhones = std::any_of(m_deviceGroups.cbegin(), m_deviceGroups.cend(),
                                             [](const DeviceGroup *group) { return !group->memberSerials().isEmpty(); });
    if (remembersPhones)
        scanDevices();
}

DeviceGroupManager::~DeviceGroupManager()
{
    // The groups, removed ones included, end after this body has run; their last signals must not
    // reach a manager that is half gone. A scan still running only fills its own future.
    m_scanWatcher->disconnect(this);
    for (DeviceGroup *group : findChildren<DeviceGroup *>(Qt::FindDirectChildrenOnly))
        group->disconnect(this);
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
    bool leftOut = false;
    for (const StoredGroup &stored : storedGroups(readFile(), &leftOut)) {
        auto *group = new DeviceGroup(this);
        group->renameTo(stored.name);
        if (stored.hasSettings)
            group->loadSettings(stored.settings);
        group->setMemberSerials(stored.devices);
        if (startRackAtLaunch)
            group->setWantedSerials(stored.wanted);
        adopt(group);
    }
    // The next save cannot write back what was left out; the file as it was stays beside it.
    if (leftOut)
        keepCopyAside();
}

QList<DeviceGroupManager::StoredGroup> DeviceGroupManager::storedGroups(const QJsonObject &file, bool *leftOut)
{
    QList<StoredGroup> groups;
    QSet<QString> claimed;
    bool dropped = false;
    for (const QJsonValue &value : file.value("device_groups").toArray()) {
        const QJsonObject element = value.toObject();
        StoredGroup group;
        group.name = element.value("name").toString();
        const QJsonValue devices = element.value("devices");
        dropped |= group.name.isEmpty() || !(devices.isArray() || devices.isUndefined());
        if (group.name.isEmpty())
            continue;
        group.hasSettings = element.contains("settings");
        group.settings = element.value("settings").toObject();
        for (const QJsonValue &serial : devices.toArray()) {
            const QString text = serial.toString();
            dropped |= text.isEmpty();
            if (!text.isEmpty() && !claimed.contains(text)) {
                claimed.insert(text);
                group.devices.append(text);
            }
        }
        // Only members can be wanted; anything else there is not the user's and is let go.
        for (const QJsonValue &serial : element.value("wanted").toArray()) {
            if (group.devices.contains(serial.toString()) && !group.wanted.contains(serial.toString()))
                group.wanted.append(serial.toString());
        }
        groups.append(group);
    }
    if (leftOut)
        *leftOut = dropped;
    return groups;
}

void DeviceGroupManager::save()
{
    QJsonArray groups;
    for (const DeviceGroup *group : std::as_const(m_deviceGroups)) {
        groups.append(QJsonObject{{"name", group->name()},
                                  {"settings", group->settingsToJson()},
                                  {"devices", QJsonArray::fromStringList(group->memberSerials())},
                                  {"wanted", QJsonArray::fromStringList(group->wantedSerials())}});
    }
    writeFile(QJsonObject{{"device_groups", groups}});
}

void DeviceGroupManager::claimMembers(DeviceGroup *owner)
{
    // A copy: forgetting in one group lets that group claim in turn.
    const QStringList serials = owner->memberSerials();
    for (DeviceGroup *group : std::as_const(m_deviceGroups)) {
        if (group == owner)
            continue;
        for (const QString &serial : serials)
            group->forgetMember(serial);
    }
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
    connect(group, &DeviceGroup::membersChanged, this, [this, group] {
        // A removed group is no longer saved and claims nothing.
        if (!m_deviceGroups.contains(group))
            return;
        claimMembers(group);
        save();
    });
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
    // Its phones go with it: no session keeps streaming for a group nobody can see, and a phone
    // can join another group without getting a second session.
    if (m_deviceGroups.removeOne(deviceGroup)) {
        const QList<Device *> devices = deviceGroup->devices();
        for (Device *device : devices)
            device->removeFromDeviceGroup();
    }
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

void DeviceGroupManager::placeKnownDevices(const QList<ADBDeviceInfo> &listed)
{
    const auto heldAnywhere = [this](const QString &serial) {
        return std::any_of(m_deviceGroups.cbegin(), m_deviceGroups.cend(),
                           [&serial](const DeviceGroup *group) { return group->holdsSerial(serial); });
    };
    for (DeviceGroup *group : std::as_const(m_deviceGroups)) {
        QList<ADBDeviceInfo> returning;
        for (const QString &serial : group->memberSerials()) {
            const auto info = std::find_if(listed.cbegin(), listed.cend(),
                                           [&serial](const ADBDeviceInfo &each) { return each.adb_serial == serial; });
            if (info != listed.cend() && !heldAnywhere(serial))
                returning.append(*info);
        }
        group->addDevices(returning);
    }
}

void DeviceGroupManager::refreshAvailableDevices(const QList<ADBDeviceInfo> &listed)
{
    placeKnownDevices(listed);
    QSet<QString> grouped;
    for (const DeviceGroup *group : std::as_const(m_deviceGroups)) {
        for (const Device *device : group->devices())
            grouped.insert(device->adbConnectionSerial());
        for (const QString &serial : group->memberSerials())
            grouped.insert(serial);
    }
    QList<ADBDeviceInfo> available;
    for (ADBDeviceInfo info : listed) {
        if (grouped.contains(info.adb_serial))
            continue;
        // Joined here, on the thread that renames: listings are read on worker threads.
        info.nickname = DeviceSettings::instance()->getDeviceNickname(info.adb_serial);
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
