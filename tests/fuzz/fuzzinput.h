#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

// Helpers shared by the fuzz targets: the input as bytes, and a cut of it into two reads chosen by
// its first byte, so that every target also meets messages split across reads.
namespace FuzzInput {

inline QByteArray bytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
}

struct Split
{
    QByteArray first;
    QByteArray second;
};

inline Split split(const uint8_t *data, size_t size)
{
    if (size == 0)
        return {};
    const QByteArray rest = bytes(data + 1, size - 1);
    const qsizetype cut = qsizetype(data[0]) * (rest.size() + 1) / 256;
    return {rest.left(cut), rest.mid(cut)};
}

// Qt's own messages (an unknown codec, a bad property) are expected here and only slow the run;
// the default LLVMFuzzerInitialize silences them.
void quietQt();

}
