// The audio socket's bytes: the codec id (after the device name when audio is the first socket),
// then packets, cut into two reads.
#include "audiodemuxer.h"
#include "checkingsink.h"
#include "fakesocket.h"
#include "fuzzinput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte picks the header form.
    const bool nameFirst = data[0] & 1;
    const FuzzInput::Split reads = FuzzInput::split(data + 1, size - 1);
    FakeSocket socket;
    CheckingSink sink(int(AudioDemuxer::MaxPayloadSize));
    AudioDemuxer demuxer(&socket, nullptr, &sink, nameFirst);
    socket.feed(reads.first);
    socket.feed(reads.second);
    socket.feed({});
    return 0;
}
