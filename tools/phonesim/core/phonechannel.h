#pragma once

#include <QByteArray>
#include <QObject>

// A byte stream between the simulated phone and the PC, carried by one adb transport stream.
// Writes are queued and delivered in order; the transport handles flow control (one WRTE in
// flight per stream), so callers may write as much as they like.
class PhoneChannel : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~PhoneChannel() override = default;

    virtual void write(const QByteArray &data) = 0;
    // Closes the stream; `closed` follows once. Safe to call more than once.
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    // Bytes accepted by write() that the PC has not acknowledged yet.
    virtual qint64 pendingBytes() const = 0;

signals:
    // The PC accepted a stream that the phone opened (OKAY received).
    void opened();
    void dataReceived(const QByteArray &data);
    // Either side closed it, or the transport was lost, or the PC refused to open it.
    void closed();
};
