#pragma once

#include <QObject>

class Phone;
class PhoneChannel;

// The AutoJS app's command server on phone port 7347.
class AutojsServer : public QObject
{
    Q_OBJECT
public:
    explicit AutojsServer(Phone *phone, QObject *parent = nullptr);
    // Takes a stream that the PC opened to tcp:7347 (through adb forward). Not owned.
    void accept(PhoneChannel *channel);

private:
    Phone *m_phone;
};
