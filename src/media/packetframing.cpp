#include "packetframing.h"

#include <QtEndian>

namespace PacketFraming {

Entry next(const uchar *data, qsizetype available, quint32 maxPayloadSize)
{
    Entry entry;
    if (available < HeaderSize)
        return entry;
    entry.ptsAndFlags = qFromBigEndian<quint64>(data);
    entry.size = qFromBigEndian<quint32>(data + 8);
    if (entry.size == 0 || entry.size > maxPayloadSize) {
        entry.status = Entry::BadSize;
        return entry;
    }
    if (available - HeaderSize < qsizetype(entry.size))
        return entry;
    entry.status = Entry::Complete;
    entry.payload = data + HeaderSize;
    return entry;
}

} // namespace PacketFraming
