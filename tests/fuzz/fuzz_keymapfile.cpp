// keymappings.json as a user may have left it.
#include "fuzzinput.h"
#include "jsonfile.h"
#include "keymappingprofile.h"

#include <QJsonArray>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QJsonObject file;
    if (!JsonFile::parse(FuzzInput::bytes(data, size), "profiles", QJsonValue::Object, &file))
        return 0;
    const QJsonObject profiles = file.value("profiles").toObject();
    for (auto it = profiles.begin(); it != profiles.end(); ++it) {
        for (const QJsonValue &value : it.value().toArray()) {
            KeyMappingEntry entry;
            if (!value.isObject() || !KeyMappingEntry::fromJson(value.toObject(), &entry))
                continue;
            // An entry read back from its own form must be the same mapping.
            KeyMappingEntry again;
            if (!KeyMappingEntry::fromJson(entry.toJson(), &again) || again.keyCode != entry.keyCode
                || again.type != entry.type || again.count != entry.count)
                std::abort();
        }
    }
    return 0;
}
