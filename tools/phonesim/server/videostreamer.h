#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class PhoneChannel;

// Feeds the video socket: the codec header once, then the configuration packet and frames.
// Subclasses decide where the frames come from.
class VideoStreamer : public QObject
{
    Q_OBJECT
public:
    explicit VideoStreamer(PhoneChannel *channel, QObject *parent = nullptr);

    // Writes the codec header and starts the frames; false with `error` set when it cannot.
    virtual bool start(QString *error) = 0;
    // The PC asked for a fresh stream: a new configuration packet and a key frame follow.
    virtual void resetVideo() = 0;
    // Stops producing frames for good.
    void stop();

signals:
    // The stream cannot go on (for example the encoder would not open).
    void failed(const QString &error);

protected:
    bool channelOpen() const;
    // A PC that reads slowly makes the phone skip pictures rather than queue them.
    bool channelCongested() const;
    void write(const QByteArray &bytes);
    void writePacket(const QByteArray &payload, qint64 ptsUs, bool config, bool keyFrame);
    qint64 elapsedUs() const { return m_clock.nsecsElapsed() / 1000; }

    QTimer m_timer;
    QElapsedTimer m_clock;

private:
    QPointer<PhoneChannel> m_channel;
};
