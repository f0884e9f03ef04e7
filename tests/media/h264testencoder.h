#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Encodes a short synthetic clip with FFmpeg's H.264 encoder (libx264) the way the phone's server
// sends it: the parameter sets first, as a configuration packet, then one packet per frame.
struct EncodedPacket
{
    QByteArray data;
    qint64 pts = 0; // microseconds
    bool key = false;
    bool config = false;
    quint64 ptsAndFlags() const;
};

class H264TestEncoder
{
public:
    // Empty list and *error set when the encoder is missing or fails.
    static QList<EncodedPacket> encode(int width, int height, int frameCount, QString *error);
    // The whole video-socket byte stream: stream header, then every packet with its 12-byte header.
    static QByteArray stream(const QList<EncodedPacket> &packets, int width, int height);
};
