#include "encoderworker.h"

void EncoderWorker::open(quint64 generation, const QSize &size, int bitRate, int fps)
{
    QString error;
    if (m_encoder.open(size, bitRate, fps, &error))
        emit opened(generation, m_encoder.config());
    else
        emit failed(generation, error);
}

void EncoderWorker::encode(quint64 generation, const QImage &image, qint64 ptsUs)
{
    QList<H264Encoder::Packet> packets;
    QByteArray data;
    bool keyFrame = false;
    if (m_encoder.encode(image, ptsUs, &packets)) {
        for (const H264Encoder::Packet &packet : std::as_const(packets)) {
            data += packet.data;
            keyFrame = keyFrame || packet.keyFrame;
            ptsUs = packet.ptsUs;
        }
    }
    emit encoded(generation, data, ptsUs, keyFrame);
}
