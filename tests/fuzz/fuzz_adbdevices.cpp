// The text of "adb devices -l".
#include "adbclient.h"
#include "fuzzinput.h"

#include <QCoreApplication>

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzInput::quietQt();
    // Nicknames are looked up for each phone; the nickname store, given no folder, reads no file.
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    for (const ADBDeviceInfo &info : AdbClient::parseDevices(QString::fromUtf8(FuzzInput::bytes(data, size)))) {
        if (info.adb_serial.isEmpty() || info.adb_serial.contains(QLatin1Char('\n')))
            std::abort();
    }
    return 0;
}
