#pragma once

#include <QtGlobal>

// The 12-byte header in front of every packet on the media sockets: 8 bytes pts-and-flags and
// 4 bytes payload size, big-endian. Pure functions so each stream reader cuts packets the same way.
namespace PacketFraming {

constexpr int HeaderSize = 12;
constexpr quint64 ConfigFlag = quint64(1) << 63;
constexpr quint64 KeyFrameFlag = quint64(1) << 62;

struct Entry
{
    enum Status {
        NeedMore, // the header or the payload is not all there yet
        BadSize,  // size 0 or above the limit: skip the header only
        Complete,
    };
    Status status = NeedMore;
    quint64 ptsAndFlags = 0;
    quint32 size = 0;
    const uchar *payload = nullptr;
};

// Reads the packet that starts at data, with available bytes buffered from there on.
Entry next(const uchar *data, qsizetype available, quint32 maxPayloadSize);

} // namespace PacketFraming
