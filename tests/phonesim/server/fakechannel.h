#pragma once

#include "phonechannel.h"

// An in-memory stream end: records what the phone writes, and lets a test play the PC's part
// (accept, refuse, send bytes, close).
class FakeChannel : public PhoneChannel
{
    Q_OBJECT
public:
    using PhoneChannel::PhoneChannel;

    void write(const QByteArray &data) override
    {
        if (!m_closed)
            written += data;
    }
    void close() override
    {
        if (m_closed)
            return;
        m_closed = true;
        emit closed();
    }
    bool isOpen() const override { return m_accepted && !m_closed; }
    qint64 pendingBytes() const override { return pending; }

    void accept()
    {
        m_accepted = true;
        emit opened();
    }
    void sendFromPc(const QByteArray &bytes) { emit dataReceived(bytes); }
    bool wasClosed() const { return m_closed; }

    QByteArray written;
    qint64 pending = 0;

private:
    bool m_accepted = false;
    bool m_closed = false;
};
