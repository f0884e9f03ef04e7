#pragma once

#include <QObject>
#include <QPointer>

struct AVCodecParameters;
struct AVPacket;

// A consumer of one demuxed stream. The producer calls openStream once it has read the stream's
// header, before any packet, then pushPacket for each packet. Both calls are synchronous and the
// producer keeps what it passes, so a sink copies (or clones) whatever it wants to keep.
class PacketSink
{
public:
    virtual ~PacketSink() = default;
    // What the stream carries (codec; for video the picture size the phone announced). A sink that
    // only looks at packets has nothing to do here.
    virtual void openStream(const AVCodecParameters *stream) { Q_UNUSED(stream) }
    virtual void pushPacket(const AVPacket *packet) = 0;
};

// A producer's hold on a sink it does not own: a sink that is also a QObject and has been
// destroyed is skipped from then on.
class GuardedPacketSink
{
public:
    explicit GuardedPacketSink(PacketSink *sink = nullptr)
        : m_sink(sink)
        , m_guard(dynamic_cast<QObject *>(sink))
        , m_guarded(!m_guard.isNull())
    {
    }

    void open(const AVCodecParameters *stream) const
    {
        if (PacketSink *sink = alive())
            sink->openStream(stream);
    }

    void push(const AVPacket *packet) const
    {
        if (PacketSink *sink = alive())
            sink->pushPacket(packet);
    }

private:
    PacketSink *alive() const { return m_guarded && m_guard.isNull() ? nullptr : m_sink; }

    PacketSink *m_sink;
    QPointer<QObject> m_guard;
    bool m_guarded;
};
