// device_groups.json as a user may have left it.
#include "devicegroup.h"
#include "devicegroupmanager.h"
#include "fuzzinput.h"
#include "jsonfile.h"

#include <QSet>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QJsonObject file;
    if (!JsonFile::parse(FuzzInput::bytes(data, size), "device_groups", QJsonValue::Array, &file))
        return 0;
    QSet<QString> serials;
    for (const DeviceGroupManager::StoredGroup &stored : DeviceGroupManager::storedGroups(file)) {
        if (stored.name.isEmpty())
            std::abort();
        // A serial belongs to one group.
        for (const QString &serial : stored.devices) {
            if (serial.isEmpty() || serials.contains(serial))
                std::abort();
            serials.insert(serial);
        }
        DeviceGroup group;
        group.loadSettings(stored.settings);
        group.setMemberSerials(stored.devices);
        if (group.settingsToJson().size() != 12)
            std::abort();
    }
    return 0;
}
