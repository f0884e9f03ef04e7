#pragma once

#include "h264encoder.h"

#include <QObject>

// Runs the H.264 encoder on a thread of its own, so a large picture never stalls the phone's
// adb traffic. Each request carries a generation: results of an encoder that has since been
// replaced (rotation, reset) carry the old one and are dropped by the caller.
class EncoderWorker : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

public slots:
    void open(quint64 generation, const QSize &size, int bitRate, int fps);
    void encode(quint64 generation, const QImage &image, qint64 ptsUs);

signals:
    void opened(quint64 generation, const QByteArray &config);
    void failed(quint64 generation, const QString &error);
    // Exactly one per encode request; `data` is empty when nothing came out.
    void encoded(quint64 generation, const QByteArray &data, qint64 ptsUs, bool keyFrame);

private:
    H264Encoder m_encoder;
};
