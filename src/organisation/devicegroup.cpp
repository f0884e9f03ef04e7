#include "devicegroup.h"

#include "controller.h"
#include "device.h"
#include "devicesettings.h"
#include "groupactions.h"
#include "groupcontrol.h"
#include "serverparams.h"

#include <QFutureWatcher>
#include <QMetaProperty>
#include <QPointer>
#include <QRandomGenerator>
#include <QTimer>
#include <QtConcurrent>

#include <limits>

namespace {
DeviceGroup::StaggerIntervals stagger;
}

void DeviceGroup::setStaggerIntervals(const StaggerIntervals &intervals)
{
    stagger = intervals;
}

DeviceGroup::StaggerIntervals DeviceGroup::staggerIntervals()
{
    return stagger;
}

DeviceGroup::DeviceGroup(QObject *parent)
    : QAbstractListModel(parent)
    , m_control(new GroupControl([this] { return m_devices; }, this))
    , m_actions(new GroupActions([this] { return m_devices; }, this))
{
    connect(m_control, &GroupControl::hostChanged, this, [this] {
        emit hostDeviceChanged();
        emit groupControlModeChanged();
    });
}

DeviceGroup::~DeviceGroup()
{
    // Staggered removals would be dropped with this object anyway; the devices go at once.
    disconnect(m_control, nullptr, this, nullptr);
    m_control->setHost(nullptr);
    const QList<Device *> devices = std::exchange(m_devices, {});
    qDeleteAll(devices);
}

bool DeviceGroup::groupControlMode() const
{
    return m_control->active();
}

Device *DeviceGroup::hostDevice() const
{
    return m_control->host();
}

void DeviceGroup::followNickname(Device *device)
{
    DeviceSettings *nicknames = DeviceSettings::instance();
    device->updateNickName(nicknames->getDeviceNickname(device->adbConnectionSerial()));
    connect(nicknames, &DeviceSettings::deviceNicknameChanged, device, [device, nicknames](const QString &serial) {
        if (serial == device->adbConnectionSerial())
            device->updateNickName(nicknames->getDeviceNickname(serial));
    });
    connect(device, &Device::nickNameEdited, nicknames, &DeviceSettings::setDeviceNickname);
}

int DeviceGroup::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_devices.size();
}

QVariant DeviceGroup::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_devices.size() || role != DeviceRole)
        return {};
    return QVariant::fromValue(m_devices.at(index.row()));
}

QHash<int, QByteArray> DeviceGroup::roleNames() const
{
    return {{DeviceRole, "device"}};
}

QVariantList DeviceGroup::getDevicesForRepeater() const
{
    QVariantList list;
    list.reserve(m_devices.size());
    for (Device *device : m_devices)
        list.append(QVariant::fromValue(device));
    return list;
}

bool DeviceGroup::addDevices(const QList<ADBDeviceInfo> &deviceInfos)
{
    if (deviceInfos.isEmpty())
        return false;
    for (int i = 0; i < deviceInfos.size(); ++i) {
        const ADBDeviceInfo &info = deviceInfos.at(i);
        remember(info.adb_serial);
        // A child of the group from the start, so a group that ends before the insertion takes it along.
        auto *device = new Device(this, info.adb_serial);
        device->setConnectionType(info.is_usb_connection ? Device::USB : Device::WiFi);
        device->setWanted(m_wantedSerials.contains(info.adb_serial));
        followNickname(device);
        m_arriving.append(device);
        QTimer::singleShot(i * stagger.addMs, this, [this, guard = QPointer<Device>(device)] {
            m_arriving.removeAll(guard);
            if (guard)
                insertDevice(guard);
        });
    }
    return true;
}

void DeviceGroup::placeRow(Device *device)
{
    const int position = m_memberSerials.indexOf(device->adbConnectionSerial());
    int row = m_devices.size();
    if (position >= 0) {
        for (int i = 0; i < m_devices.size(); ++i) {
            if (m_memberSerials.indexOf(m_devices.at(i)->adbConnectionSerial()) > position) {
                row = i;
                break;
            }
        }
    }
    beginInsertRows(QModelIndex(), row, row);
    device->setParent(this);
    device->setDeviceGroup(this);
    connect(device, &Device::leaveGroupRequested, this, [this, device] { removeDevice(device); });
    connect(device, &Device::wantedChanged, this, [this, device] { rememberWanted(device); });
    rememberWanted(device);
    // Every session (a start, a restart, a view switch) brings a controller that starts without a delay.
    connect(device, &Device::controllerChanged, this, [this, device] {
        drawClickDelay(device, QRandomGenerator::global()->generate(), true);
    });
    m_devices.insert(row, device);
    endInsertRows();
    announceIndexes();
}

void DeviceGroup::insertDevice(Device *device)
{
    placeRow(device);
    applySettingsToDevice(device, QRandomGenerator::global()->generate(), true);
    emit deviceCountChanged();
    emit deviceAddedIntoGroup(device);
    device->refreshAddressAndDetails();
    if (device->wanted())
        device->startScrcpySession();
}

void DeviceGroup::appendDevice(Device *device)
{
    if (!device || m_devices.contains(device))
        return;
    remember(device->adbConnectionSerial());
    followNickname(device);
    placeRow(device);
    emit deviceCountChanged();
    emit deviceAddedIntoGroup(device);
}

void DeviceGroup::remember(const QString &serial)
{
    if (serial.isEmpty() || m_memberSerials.contains(serial))
        return;
    m_memberSerials.append(serial);
    emit membersChanged();
}

void DeviceGroup::setMemberSerials(const QStringList &serials)
{
    m_memberSerials = serials;
}

void DeviceGroup::forgetMember(const QString &serial)
{
    const bool wanted = m_wantedSerials.removeAll(serial) > 0;
    if (m_memberSerials.removeAll(serial) > 0 || wanted)
        emit membersChanged();
}

void DeviceGroup::setWantedSerials(const QStringList &serials)
{
    m_wantedSerials = serials;
}

void DeviceGroup::rememberWanted(Device *device)
{
    const QString serial = device->adbConnectionSerial();
    if (device->wanted() == m_wantedSerials.contains(serial))
        return;
    if (device->wanted())
        m_wantedSerials.append(serial);
    else
        m_wantedSerials.removeAll(serial);
    emit membersChanged();
}

bool DeviceGroup::holdsSerial(const QString &serial) const
{
    const auto same = [&serial](const Device *device) { return device && device->adbConnectionSerial() == serial; };
    return std::any_of(m_devices.cbegin(), m_devices.cend(), same)
           || std::any_of(m_arriving.cbegin(), m_arriving.cend(), same);
}

void DeviceGroup::dropHost()
{
    m_control->setHost(nullptr);
}

void DeviceGroup::announceIndexes()
{
    for (int i = 0; i < m_devices.size(); ++i)
        m_devices.at(i)->setIndexInGroup(i);
}

void DeviceGroup::takeRow(Device *device)
{
    const int row = m_devices.indexOf(device);
    beginRemoveRows(QModelIndex(), row, row);
    m_devices.removeAt(row);
    endRemoveRows();
    // A device moved away hears from its new group only.
    disconnect(device, nullptr, this, nullptr);
    device->setIndexInGroup(-1);
}

void DeviceGroup::removeDevice(Device *device)
{
    if (!m_devices.contains(device))
        return;
    if (device == hostDevice())
        dropHost();
    takeRow(device);
    forgetMember(device->adbConnectionSerial());
    emit deviceCountChanged();
    emit deviceRemovedFromGroup(device);
    announceIndexes();
    device->deleteLater();
}

void DeviceGroup::clearDevices()
{
    // Phones still being added go too; they would otherwise appear after the clear.
    for (const QPointer<Device> &device : std::exchange(m_arriving, {})) {
        if (device) {
            forgetMember(device->adbConnectionSerial());
            delete device.data();
        }
    }
    if (m_devices.isEmpty())
        return;
    dropHost();
    for (int k = 0; k < m_devices.size(); ++k) {
        QTimer::singleShot(k * stagger.clearMs, this, [this, guard = QPointer<Device>(m_devices.at(k))] {
            if (guard)
                removeDevice(guard);
        });
    }
}

void DeviceGroup::moveDevicesToGroup(const QStringList &serials, DeviceGroup *targetGroup)
{
    if (serials.isEmpty() || !targetGroup || targetGroup == this)
        return;
    QList<Device *> moving;
    for (Device *device : std::as_const(m_devices)) {
        if (serials.contains(device->adbConnectionSerial()))
            moving.append(device);
    }
    if (moving.isEmpty())
        return;

    for (Device *device : std::as_const(moving)) {
        // The host drives only its own group; leaving it ends group control here.
        if (device == hostDevice())
            dropHost();
        device->setDeviceGroup(targetGroup);
        takeRow(device);
        forgetMember(device->adbConnectionSerial());
        emit deviceRemovedFromGroup(device);
    }
    emit deviceCountChanged();
    announceIndexes();

    for (Device *device : std::as_const(moving)) {
        targetGroup->remember(device->adbConnectionSerial());
        targetGroup->placeRow(device);
        targetGroup->applySettingsToDevice(device, QRandomGenerator::global()->generate(), true);
        emit targetGroup->deviceAddedIntoGroup(device);
    }
    emit targetGroup->deviceCountChanged();
    targetGroup->announceIndexes();
}

void DeviceGroup::renameTo(const QString &newName)
{
    if (newName.isEmpty() || newName == m_name)
        return;
    m_name = newName;
    emit nameChanged();
}

void DeviceGroup::startGroupControl()
{
    if (m_control->active() || m_devices.isEmpty())
        return;
    m_control->setHost(m_devices.first());
}

void DeviceGroup::stopGroupControl()
{
    dropHost();
}

void DeviceGroup::startAllDevices()
{
    // Every member is wanted, also one still being added or not attached now: it starts as soon
    // as it is in the group.
    for (const QPointer<Device> &device : std::as_const(m_arriving)) {
        if (device)
            device->setWanted(true);
    }
    if (m_wantedSerials != m_memberSerials) {
        m_wantedSerials = m_memberSerials;
        emit membersChanged();
    }
    // All at once: the adb pool lets only a few launches talk to adb at the same time, so a
    // hundred phones neither flood the adb server nor wait for a fixed stagger.
    for (Device *device : std::as_const(m_devices)) {
        if (!device->running())
            device->startScrcpySession();
    }
}

void DeviceGroup::stopAllDevices()
{
    if (!m_wantedSerials.isEmpty()) {
        m_wantedSerials.clear();
        emit membersChanged();
    }
    for (const QPointer<Device> &device : std::as_const(m_arriving)) {
        if (device)
            device->setWanted(false);
    }
    for (Device *device : std::as_const(m_devices))
        device->setWanted(false);
    for (int k = 0; k < m_devices.size(); ++k) {
        QTimer::singleShot(k * stagger.stopMs, this, [guard = QPointer<Device>(m_devices.at(k))] {
            if (guard)
                guard->stopScrcpySession();
        });
    }
}

void DeviceGroup::applySettingsToDevice(Device *device, quint32 random, bool newToGroup) const
{
    ServerParams *small = device->serverParamsSmallView();
    small->setMaxSize(maxSize());
    small->setMaxFps(maxFPS());
    small->setBitRate(bitRate());
    small->setAudio(enableAudio());
    ServerParams *big = device->serverParamsBigView();
    big->setMaxSize(maxSizeBigView());
    big->setMaxFps(maxFPSBigView());
    big->setBitRate(bitRateBigView());
    big->setAudio(enableAudio());
    drawClickDelay(device, random, newToGroup);
}

void DeviceGroup::drawClickDelay(Device *device, quint32 random, bool newToGroup) const
{
    Controller *controller = device->controller();
    // The host is no follower: nothing is replayed on it.
    if (!controller || device == hostDevice())
        return;
    if (clickDelaySeconds() < 1) {
        if (newToGroup)
            controller->setClickDelayMilliSeconds(0);
        return;
    }
    const quint64 bound = quint64(clickDelaySeconds()) * 1000u;
    const quint64 delay = random % bound;
    controller->setClickDelayMilliSeconds(int(qMin<quint64>(delay, std::numeric_limits<int>::max())));
}

void DeviceGroup::applySettingsToAllDevices()
{
    // The random draws run in the pool; the devices are touched only here, on their own thread,
    // where none of them can be deleted half-way through.
    const QList<QPointer<Device>> targets(m_devices.cbegin(), m_devices.cend());
    auto *watcher = new QFutureWatcher<QList<quint32>>(this);
    connect(watcher, &QFutureWatcher<QList<quint32>>::finished, this, [this, watcher, targets] {
        const QList<quint32> draws = watcher->result();
        watcher->deleteLater();
        for (int i = 0; i < targets.size() && i < draws.size(); ++i) {
            // A device moved away meanwhile follows its new group's settings.
            if (targets.at(i) && targets.at(i)->deviceGroup() == this)
                applySettingsToDevice(targets.at(i), draws.at(i), false);
        }
    });
    const int count = targets.size();
    watcher->setFuture(QtConcurrent::run([count] {
        QList<quint32> draws;
        draws.reserve(count);
        for (int i = 0; i < count; ++i)
            draws.append(QRandomGenerator::global()->generate());
        return draws;
    }));
}

void DeviceGroup::changeSetting(GroupSettings::Key key, int value, void (DeviceGroup::*changed)())
{
    if (!m_settings.set(key, value))
        return;
    if (!m_name.isEmpty()) {
        applySettingsToAllDevices();
        emit settingsChanged();
    }
    emit(this->*changed)();
}

void DeviceGroup::setEnableAudio(bool value)
{
    // Every phone hears about it, even when the group's value stays the same.
    for (Device *device : std::as_const(m_devices))
        device->setEnableAudio(value);
    changeSetting(GroupSettings::EnableAudio, value, &DeviceGroup::enableAudioChanged);
}

void DeviceGroup::loadSettings(const QJsonObject &settings)
{
    m_settings.load(settings);
    // Each setting is announced through its property, which bears the setting's key.
    for (const GroupSettings::Field &field : GroupSettings::fields()) {
        const QMetaProperty property = metaObject()->property(metaObject()->indexOfProperty(field.key));
        property.notifySignal().invoke(this);
    }
}

QJsonObject DeviceGroup::settingsToJson() const
{
    return m_settings.toJson();
}

QVariantMap DeviceGroup::settingRange(const QString &key) const
{
    const int index = GroupSettings::indexOf(key);
    if (index < 0)
        return {};
    const GroupSettings::Field &field = GroupSettings::fields()[index];
    return {{"from", field.min}, {"to", field.max}};
}
