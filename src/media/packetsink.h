#pragma once

struct AVPacket;

// A consumer of demuxed packets. Producers call pushPacket synchronously and unreference the
// packet as soon as the call returns, so a sink copies (or clones) whatever it wants to keep.
class PacketSink
{
public:
    virtual ~PacketSink() = default;
    virtual void pushPacket(const AVPacket *packet) = 0;
};
