#pragma once

#include "packetsink.h"

extern "C" {
#include <libavcodec/packet.h>
}

#include <cstdlib>

// Every packet a demuxer hands on must be one the decoder can take: data, and at most `max` bytes.
struct CheckingSink : PacketSink
{
    explicit CheckingSink(int max) : max(max) {}
    void pushPacket(const AVPacket *p) override
    {
        if (!p || !p->data || p->size <= 0 || p->size > max)
            std::abort();
    }
    int max;
};
