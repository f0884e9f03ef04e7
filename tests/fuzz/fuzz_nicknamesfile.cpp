// device_nicknames.json as a user may have left it.
#include "devicesettings.h"
#include "fuzzinput.h"
#include "jsonfile.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QJsonObject file;
    if (!JsonFile::parse(FuzzInput::bytes(data, size), "device_nicknames", QJsonValue::Object, &file))
        return 0;
    const QMap<QString, QString> nicknames = DeviceSettings::nicknamesFrom(file);
    for (const QString &nickname : nicknames) {
        if (nickname.isEmpty())
            std::abort();
    }
    return 0;
}
