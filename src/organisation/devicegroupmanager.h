#pragma once

#include "adbdeviceinfo.h"
#include "jsonstore.h"

#include <QFutureWatcher>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

class Device;
class DeviceGroup;

// Owns every device group, offers the attached phones that are in no group, scans for phones in
// the background and keeps the groups with their settings in device_groups.json.
class DeviceGroupManager : public JsonStore
{
    Q_OBJECT
    Q_MOC_INCLUDE("device.h")
    Q_MOC_INCLUDE("devicegroup.h")
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(QList<ADBDeviceInfo> availableDeviceInfos READ availableDeviceInfos NOTIFY availableDeviceInfosChanged)
    Q_PROPERTY(QList<DeviceGroup *> deviceGroups READ deviceGroups NOTIFY deviceGroupsChanged)
    Q_PROPERTY(DeviceGroup *currentSelectedGroup READ currentSelectedGroup WRITE setCurrentSelectedGroup
                   NOTIFY currentSelectedGroupChanged)
    Q_PROPERTY(int totalDeviceCount READ totalDeviceCount)

public:
    explicit DeviceGroupManager(QObject *parent = nullptr);
    ~DeviceGroupManager() override;

    bool isScanning() const { return m_isScanning; }
    QList<ADBDeviceInfo> availableDeviceInfos() const { return m_availableDeviceInfos; }
    QList<DeviceGroup *> deviceGroups() const { return m_deviceGroups; }
    DeviceGroup *currentSelectedGroup() const { return m_currentSelectedGroup; }
    int totalDeviceCount() const;

    // The folder a manager made from now on reads device_groups.json from at once, QML making it;
    // a manager that lives on follows a new folder through setFolder().
    static void setDefaultFolder(const QString &folder);
    static QString defaultFolder();
    // Whether a manager made from now on starts the phones that were wanted running when the file
    // was last saved ("Start the rack at launch"); without it they wait for the user's Start.
    static void setStartRackAtLaunch(bool start);

    // One group as device_groups.json holds it.
    struct StoredGroup
    {
        QString name;
        bool hasSettings = false;
        QJsonObject settings;
        QStringList devices;
        // Members the user wanted running.
        QStringList wanted;
    };
    // The usable groups of the file's object: named ones, each serial kept by its first group only.
    // leftOut, when given, tells whether an element could not be read (a serial claimed by an earlier
    // group is not counted: a phone belongs to one group).
    static QList<StoredGroup> storedGroups(const QJsonObject &file, bool *leftOut = nullptr);

    Q_INVOKABLE void handleDeviceAdded(Device *device);
    Q_INVOKABLE void handleDeviceRemoved(Device *device);
    Q_INVOKABLE void createDeviceGroup(const QString &name);
    Q_INVOKABLE void removeDeviceGroup(DeviceGroup *deviceGroup);
    Q_INVOKABLE void setCurrentSelectedGroup(DeviceGroup *group);
    Q_INVOKABLE void scanDevices();
    Q_INVOKABLE void clearAvailableDevices();
    // Restarts in the background; adbServerRestarted follows.
    Q_INVOKABLE void restartADBServer();

    // Puts every listed phone that a group remembers back into that group, at its position.
    void placeKnownDevices(const QList<ADBDeviceInfo> &listed);

signals:
    void currentSelectedGroupChanged();
    void isScanningChanged();
    void availableDeviceInfosChanged();
    void deviceGroupsChanged();
    void scanError(const QString &message);
    void adbServerRestarted(bool restarted);

private:
    struct ScanResult
    {
        QList<ADBDeviceInfo> devices;
        QString error;
    };
    static ScanResult listDevices();

    void load();
    void save();
    void adopt(DeviceGroup *group);
    // A serial belongs to one group: the one that took it last.
    void claimMembers(DeviceGroup *owner);
    void refreshAvailableDevices(const QList<ADBDeviceInfo> &listed);
    void refreshFromAdb();
    void finishScan();

    QList<DeviceGroup *> m_deviceGroups;
    DeviceGroup *m_currentSelectedGroup = nullptr;
    bool m_isScanning = false;
    QList<ADBDeviceInfo> m_availableDeviceInfos;
    QFutureWatcher<ScanResult> *m_scanWatcher;
};
