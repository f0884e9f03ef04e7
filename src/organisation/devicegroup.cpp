#include "devicegroup.h"

#include "adbtask.h"
#include "autojs.h"
#include "controller.h"
#include "device.h"
#include "groupoperation.h"
#include "groupreplay.h"
#include "serverparams.h"

#include <QFutureWatcher>
#include <QMetaProperty>
#include <QPointer>
#include <QQmlEngine>
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
{
}

DeviceGroup::~DeviceGroup()
{
    // Staggered removals would be dropped with this object anyway; the devices go at once.
    if (m_hostDevice)
        m_hostDevice->setIsHostDevice(false);
    m_hostDevice = nullptr;
    const QList<Device *> devices = std::exchange(m_devices, {});
    qDeleteAll(devices);
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
        auto *device = new Device(this, this, info.adb_serial);
        device->setConnectionType(info.is_usb_connection ? Device::USB : Device::WiFi);
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
    m_devices.insert(row, device);
    endInsertRows();
    if (row < m_devices.size() - 1)
        announceIndexes();
}

void DeviceGroup::insertDevice(Device *device)
{
    placeRow(device);
    applySettingsToDevice(device, QRandomGenerator::global()->generate());
    emit deviceCountChanged();
    emit deviceAddedIntoGroup(device);
    device->refreshAddressAndDetails();
}

void DeviceGroup::appendDevice(Device *device)
{
    if (!device || m_devices.contains(device))
        return;
    remember(device->adbConnectionSerial());
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
    if (m_memberSerials.removeAll(serial) > 0)
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
    if (!m_hostDevice)
        return;
    m_hostDevice->setIsHostDevice(false);
    m_hostDevice = nullptr;
    emit hostDeviceChanged();
    emit groupControlModeChanged();
}

void DeviceGroup::announceIndexes()
{
    for (Device *device : std::as_const(m_devices))
        emit device->indexInGroupChanged();
}

void DeviceGroup::takeRow(Device *device)
{
    const int row = m_devices.indexOf(device);
    beginRemoveRows(QModelIndex(), row, row);
    m_devices.removeAt(row);
    endRemoveRows();
}

void DeviceGroup::removeDevice(Device *device)
{
    if (!m_devices.contains(device))
        return;
    if (device == m_hostDevice)
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
        if (device == m_hostDevice)
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
        targetGroup->applySettingsToDevice(device, QRandomGenerator::global()->generate());
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
    if (m_hostDevice || m_devices.isEmpty())
        return;
    m_hostDevice = m_devices.first();
    m_hostDevice->setIsHostDevice(true);
    emit hostDeviceChanged();
    emit groupControlModeChanged();
}

void DeviceGroup::stopGroupControl()
{
    dropHost();
}

void DeviceGroup::replayHostMessage(const ControlMsg &msg)
{
    if (!m_hostDevice)
        return;
    QList<GroupReplay::Target> targets;
    targets.reserve(m_devices.size());
    for (Device *device : std::as_const(m_devices)) {
        if (device != m_hostDevice)
            targets.append({device->controller(), device->frameSize()});
    }
    GroupReplay::replay(msg, m_hostDevice->frameSize(), targets);
}

void DeviceGroup::startAllDevices()
{
    // All at once: the adb pool lets only a few launches talk to adb at the same time, so a
    // hundred phones neither flood the adb server nor wait for a fixed stagger.
    for (Device *device : std::as_const(m_devices)) {
        if (!device->running())
            device->startScrcpySession();
    }
}

void DeviceGroup::stopAllDevices()
{
    for (int k = 0; k < m_devices.size(); ++k) {
        QTimer::singleShot(k * stagger.stopMs, this, [guard = QPointer<Device>(m_devices.at(k))] {
            if (guard)
                guard->stopScrcpySession();
        });
    }
}

GroupOperation *DeviceGroup::beginOperation(const QString &title)
{
    // One group action at a time: the one under way stays on display, cancellable, and says why
    // the new one did not start.
    if (m_operation && m_operation->running()) {
        m_operation->setNotice(tr("\"%1\" did not start: \"%2\" is still running. Cancel it or wait for it to end.")
                                   .arg(title, m_operation->title()));
        return nullptr;
    }
    if (m_operation)
        m_operation->deleteLater();
    m_operation = new GroupOperation(this);
    // Handed to QML as a return value: the group keeps it, not the script's garbage collector.
    QQmlEngine::setObjectOwnership(m_operation, QQmlEngine::CppOwnership);
    emit operationChanged();
    return m_operation;
}

GroupOperation *DeviceGroup::screenshotAllDevices()
{
    const QString title = tr("Screenshot");
    if (GroupOperation *operation = beginOperation(title)) {
        operation->startDeviceCalls(title, m_devices, {[](Device *device, QObject *context, const GroupOperation::Reply &reply) {
            QObject::connect(device, &Device::screenshotFinished, context, reply);
            device->takeScreenshot();
        }, nullptr});
    }
    return m_operation;
}

GroupOperation *DeviceGroup::installApk(const QString &apkPath)
{
    const QString title = tr("Install APK");
    if (GroupOperation *operation = beginOperation(title)) {
        operation->startAdb(title, m_devices,
                            [apkPath](const QString &serial) { return AdbTask::installSteps(serial, apkPath); });
    }
    return m_operation;
}

GroupOperation *DeviceGroup::uploadFile(const QString &filePath)
{
    const QString title = tr("Upload File");
    if (GroupOperation *operation = beginOperation(title)) {
        operation->startAdb(title, m_devices,
                            [filePath](const QString &serial) { return AdbTask::uploadSteps(serial, filePath); });
    }
    return m_operation;
}

GroupOperation *DeviceGroup::runAutojs(const QString &autojsPath)
{
    const QString title = tr("Run AutoJS");
    GroupOperation *operation = beginOperation(title);
    if (!operation)
        return m_operation;
    // Read once for every phone, and not on the user interface's thread.
    const QFuture<Autojs::Script> script = Autojs::load(autojsPath);
    operation->startDeviceCalls(title, m_devices, {
        [autojsPath, script](Device *device, QObject *context, const GroupOperation::Reply &reply) {
            QObject::connect(device->autojs(), &Autojs::runFinished, context, reply);
            device->autojs()->run(autojsPath, script);
        },
        [](Device *device) { device->autojs()->cancelRun(); }});
    return operation;
}

void DeviceGroup::stopAllAutojs()
{
    for (Device *device : std::as_const(m_devices)) {
        if (device->autojs())
            device->autojs()->stop();
    }
}

GroupOperation *DeviceGroup::executeADBCommand(const QString &input)
{
    const QString title = tr("ADB Command");
    if (GroupOperation *operation = beginOperation(title)) {
        operation->startAdb(title, m_devices,
                            [input](const QString &serial) { return AdbTask::commandSteps(serial, input); });
    }
    return m_operation;
}

void DeviceGroup::applySettingsToDevice(Device *device, quint32 random) const
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

    // Below one second the controller keeps the delay it already had, on purpose.
    if (device == m_hostDevice || !device->controller() || clickDelaySeconds() < 1)
        return;
    const quint64 bound = quint64(clickDelaySeconds()) * 1000u;
    const quint64 delay = random % bound;
    device->controller()->setClickDelayMilliSeconds(int(qMin<quint64>(delay, std::numeric_limits<int>::max())));
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
                applySettingsToDevice(targets.at(i), draws.at(i));
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

void DeviceGroup::setShowControlButtons(bool value)
{
    changeSetting(GroupSettings::ShowControlButtons, value, &DeviceGroup::showControlButtonsChanged);
}

void DeviceGroup::setMaxSize(int value)
{
    changeSetting(GroupSettings::MaxSize, value, &DeviceGroup::maxSizeChanged);
}

void DeviceGroup::setMaxFPS(int value)
{
    changeSetting(GroupSettings::MaxFPS, value, &DeviceGroup::maxFPSChanged);
}

void DeviceGroup::setBitRate(int value)
{
    changeSetting(GroupSettings::BitRate, value, &DeviceGroup::bitRateChanged);
}

void DeviceGroup::setMaxSizeBigView(int value)
{
    changeSetting(GroupSettings::MaxSizeBigView, value, &DeviceGroup::maxSizeBigViewChanged);
}

void DeviceGroup::setMaxFPSBigView(int value)
{
    changeSetting(GroupSettings::MaxFPSBigView, value, &DeviceGroup::maxFPSBigViewChanged);
}

void DeviceGroup::setBitRateBigView(int value)
{
    changeSetting(GroupSettings::BitRateBigView, value, &DeviceGroup::bitRateBigViewChanged);
}

void DeviceGroup::setClickDelaySeconds(int value)
{
    changeSetting(GroupSettings::ClickDelaySeconds, value, &DeviceGroup::clickDelaySecondsChanged);
}

void DeviceGroup::setCellWidth(int value)
{
    changeSetting(GroupSettings::CellWidth, value, &DeviceGroup::cellWidthChanged);
}

void DeviceGroup::setEnableAudio(bool value)
{
    // Every phone hears about it, even when the group's value stays the same.
    for (Device *device : std::as_const(m_devices))
        device->setEnableAudio(value);
    changeSetting(GroupSettings::EnableAudio, value, &DeviceGroup::enableAudioChanged);
}

void DeviceGroup::setOrientation(Orientation value)
{
    changeSetting(GroupSettings::Orientation, value, &DeviceGroup::orientationChanged);
}

void DeviceGroup::setBigViewWidth(int value)
{
    changeSetting(GroupSettings::BigViewWidth, value, &DeviceGroup::bigViewWidthChanged);
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
