#pragma once

#include "adbdeviceinfo.h"
#include "device.h"
#include "devicegroup.h"

#include <QStringList>

// The serials of a group's phones in row order, or of a listing in its order.
inline QStringList serialsOf(const DeviceGroup *group)
{
    QStringList serials;
    for (const Device *device : group->devices())
        serials << device->adbConnectionSerial();
    return serials;
}

inline QStringList serialsOf(const QList<ADBDeviceInfo> &listing)
{
    QStringList serials;
    for (const ADBDeviceInfo &info : listing)
        serials << info.adb_serial;
    return serials;
}
