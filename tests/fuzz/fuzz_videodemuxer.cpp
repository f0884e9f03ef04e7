// The video socket's bytes: a stream header, then packets, cut into two reads.
#include "fakesocket.h"
#include "fuzzinput.h"
#include "packetsink.h"
#include "videodemuxer.h"

#include <cstdlib>

namespace {
// Every packet handed on must be one the decoder can take.
class CheckingSink : public PacketSink
{
public:
    void pushPacket(const AVPacket *packet) override
    {
        if (!packet || !packet->data || packet->size <= 0 || packet->size > int(VideoDemuxer::MaxPayloadSize) + 4)
            std::abort();
    }
};
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    FuzzInput::quietQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FuzzInput::Split reads = FuzzInput::split(data, size);
    FakeSocket socket;
    CheckingSink sink;
    VideoDemuxer demuxer(&socket, nullptr, &sink);
    socket.feed(reads.first);
    socket.feed(reads.second);
    // Packets beyond one read's share are taken on the next readyRead.
    socket.feed({});
    return 0;
}
