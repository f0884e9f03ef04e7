#pragma once

#include <QMap>
#include <QString>

struct PhoneProfile;

// The system properties that `getprop` reports for a simulated phone.
class PhoneProperties
{
public:
    // adbPort seeds the hardware serial; tcpipPort is the port of adb over Wi-Fi, 0 while off.
    static QMap<QString, QString> build(const PhoneProfile &profile, int adbPort, int tcpipPort);
    // A hardware-like serial number that stays the same for the same seed (the adb port).
    static QString hardwareSerial(int seed);
};
