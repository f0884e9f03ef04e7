#pragma once

#include "adbdeviceinfo.h"

#include <QFutureWatcher>
#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

class Device;
class DeviceGroup;

// Owns every device group, offers the attached phones that are in no group, scans for phones in
// the background and keeps the groups with their settings in device_groups.json.
class DeviceGroupManager : public QObject
{
    Q_OBJECT
    QML_ELEMENT
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

    // The full path of device_groups.json in the folder chosen in the settings.
    static QString filePath();

    Q_INVOKABLE void handleDeviceAdded(Device *device);
    Q_INVOKABLE void handleDeviceRemoved(Device *device);
    Q_INVOKABLE void createDeviceGroup(const QString &name);
    Q_INVOKABLE void removeDeviceGroup(DeviceGroup *deviceGroup);
    Q_INVOKABLE void setCurrentSelectedGroup(DeviceGroup *group);
    Q_INVOKABLE void scanDevices();
    Q_INVOKABLE void clearAvailableDevices();
    // Restarts in the background; adbServerRestarted follows.
    Q_INVOKABLE void restartADBServer();

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
    void save() const;
    void adopt(DeviceGroup *group);
    void refreshAvailableDevices(const QList<ADBDeviceInfo> &listed);
    void refreshFromAdb();
    void finishScan();

    QList<DeviceGroup *> m_deviceGroups;
    DeviceGroup *m_currentSelectedGroup = nullptr;
    bool m_isScanning = false;
    QList<ADBDeviceInfo> m_availableDeviceInfos;
    QFutureWatcher<ScanResult> *m_scanWatcher;
};
