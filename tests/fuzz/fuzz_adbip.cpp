// "ip addr show" and "ifconfig" output read from a phone's shell.
#include "adbclient.h"
#include "fuzzinput.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(FuzzInput::bytes(data, size));
    for (const auto listing : {AdbClient::AddressListing::Ip, AdbClient::AddressListing::Ifconfig}) {
        const QString address = AdbClient::parseInetAddress(text, listing);
        if (!address.isEmpty() && !AdbClient::isAddressProperty(address))
            std::abort();
    }
    return 0;
}
