#pragma once

#include "videodecoder.h"
#include "videodemuxer.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QList>
#include <QtEndian>

extern "C" {
#include <libavutil/frame.h>
}

// A media socket's bytes packet by packet, with the flags that Korvel's demuxer folds away:
// optional 64-byte name, 4-byte codec id, for video width and height, then 12-byte packet headers.
struct MediaPacket
{
    quint64 ptsAndFlags = 0;
    QByteArray payload;
    bool config() const { return ptsAndFlags >> 63; }
    bool keyFrame() const { return (ptsAndFlags >> 62) & 1; }
    qint64 pts() const { return qint64(ptsAndFlags & ((quint64(1) << 62) - 1)); }
};

struct MediaStream
{
    QByteArray name;
    QByteArray codec;
    QSize size;
    QList<MediaPacket> packets; // complete packets only

    static MediaStream parse(const QByteArray &bytes, bool withName, bool video)
    {
        MediaStream stream;
        qsizetype at = withName ? 64 : 0;
        if (bytes.size() < at + (video ? 12 : 4))
            return stream;
        stream.name = bytes.left(at);
        stream.name.truncate(stream.name.indexOf('\0') < 0 ? at : stream.name.indexOf('\0'));
        stream.codec = bytes.mid(at, 4);
        at += 4;
        if (video) {
            stream.size = QSize(qFromBigEndian<qint32>(bytes.constData() + at), qFromBigEndian<qint32>(bytes.constData() + at + 4));
            at += 8;
        }
        while (bytes.size() - at >= 12) {
            const quint32 size = qFromBigEndian<quint32>(bytes.constData() + at + 8);
            if (bytes.size() - at - 12 < qsizetype(size))
                break;
            stream.packets << MediaPacket{qFromBigEndian<quint64>(bytes.constData() + at), bytes.mid(at + 12, size)};
            at += 12 + size;
        }
        return stream;
    }
};

// The pictures that Korvel's own demuxer and decoder make of a video socket's bytes, as luma planes.
inline QList<QImage> decodeVideo(const QByteArray &socketBytes)
{
    QBuffer socket;
    socket.setData(socketBytes);
    socket.open(QIODevice::ReadOnly);
    VideoDecoder decoder;
    VideoDemuxer demuxer(&socket, nullptr, &decoder);
    decoder.setDemuxer(&demuxer);
    QList<QImage> pictures;
    QObject::connect(&decoder, &VideoDecoder::frameDecoded, [&pictures](AVFrame *frame) {
        QImage luma(frame->width, frame->height, QImage::Format_Grayscale8);
        for (int y = 0; y < frame->height; ++y)
            memcpy(luma.scanLine(y), frame->data[0] + y * frame->linesize[0], size_t(frame->width));
        pictures << luma;
    });
    // Each read takes a bounded number of packets.
    for (qsizetype before = -1; before != pictures.size();) {
        before = pictures.size();
        demuxer.read();
    }
    return pictures;
}
