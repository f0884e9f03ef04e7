#pragma once

#include <QByteArray>
#include <QIODevice>

// A socket stand-in: bytes handed to feed() become readable and announce themselves with readyRead.
class FakeSocket : public QIODevice
{
public:
    FakeSocket() { open(QIODevice::ReadOnly); }

    void feed(const QByteArray &bytes)
    {
        m_pending.append(bytes);
        emit readyRead();
    }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return m_pending.size() + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const qint64 n = qMin<qint64>(maxSize, m_pending.size());
        memcpy(data, m_pending.constData(), size_t(n));
        m_pending.remove(0, n);
        return n;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_pending;
};
