// What adb sends to the simulated phone's daemon: transport messages, cut into two reads.
#include "adbmessage.h"
#include "fuzzinput.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FuzzInput::Split reads = FuzzInput::split(data, size);
    constexpr quint32 maxPayload = 1024 * 1024;
    QByteArray buffer = reads.first;
    bool appended = false;
    for (;;) {
        AdbMessage message;
        const qsizetype before = buffer.size();
        const AdbMessage::ParseResult result = AdbMessage::parse(buffer, maxPayload, &message);
        if (result == AdbMessage::ParseResult::Malformed)
            break;
        if (result == AdbMessage::ParseResult::Complete) {
            if (quint32(message.data.size()) > maxPayload
                || buffer.size() != before - AdbMessage::HeaderSize - message.data.size())
                std::abort();
            continue;
        }
        if (appended)
            break;
        buffer += reads.second;
        appended = true;
    }
    return 0;
}
