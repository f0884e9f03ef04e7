// The video socket's bytes: a stream header, then packets, cut into two reads.
#include "checkingsink.h"
#include "fakesocket.h"
#include "fuzzinput.h"
#include "videodemuxer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const FuzzInput::Split reads = FuzzInput::split(data, size);
    FakeSocket socket;
    CheckingSink sink(int(VideoDemuxer::MaxPayloadSize) + 4); // with a start code put in front
    VideoDemuxer demuxer(&socket, nullptr, &sink);
    socket.feed(reads.first);
    socket.feed(reads.second);
    // Packets beyond one read's share are taken on the next readyRead.
    socket.feed({});
    return 0;
}
