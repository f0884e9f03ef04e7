#pragma once

#include <QObject>
#include <QPointer>

struct AVPacket;

// A consumer of demuxed packets. Producers call pushPacket synchronously and unreference the
// packet as soon as the call returns, so a sink copies (or clones) whatever it wants to keep.
class PacketSink
{
public:
    virtual ~PacketSink() = default;
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

    void push(const AVPacket *packet) const
    {
        if (m_sink && !(m_guarded && m_guard.isNull()))
            m_sink->pushPacket(packet);
    }

private:
    PacketSink *m_sink;
    QPointer<QObject> m_guard;
    bool m_guarded;
};
