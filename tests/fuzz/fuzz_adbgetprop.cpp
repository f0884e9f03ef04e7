// Property values and "wm size" output read from a phone's shell.
#include "adbclient.h"
#include "fuzzinput.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(FuzzInput::bytes(data, size));
    AdbClient::parseScreenSize(text);
    if (AdbClient::isAddressProperty(text) && text.count(QLatin1Char('.')) != 3)
        std::abort();
    return 0;
}
