// What Korvel writes on the simulated phone's control socket, cut into two reads.
#include "controlmessagedecoder.h"
#include "fuzzinput.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FuzzInput::Split reads = FuzzInput::split(data, size);
    ControlMessageDecoder decoder;
    for (const QJsonObject &message : decoder.feed(reads.first) + decoder.feed(reads.second)) {
        if (!message.contains("type"))
            std::abort();
    }
    return 0;
}
