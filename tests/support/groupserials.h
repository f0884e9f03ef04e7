#pragma once

#include "device.h"
#include "devicegroup.h"

#include <QStringList>

// The serials of a group's phones, in row order.
inline QStringList serialsOf(const DeviceGroup *group)
{
    QStringList serials;
    for (const Device *device : group->devices())
        serials << device->adbConnectionSerial();
    return serials;
}
