#pragma once

#include <QLockFile>
#include <QString>

#include <functional>
#include <memory>

// A loopback resource (an adb server port, a phone's Wi-Fi address) held for as long as this object
// lives. One lock file per value keeps every other test program off it, from this checkout or any
// other, and the value must also be free on the machine right now.
class LoopbackLease
{
public:
    static LoopbackLease adbServerPort();
    // The last octet of a 127.0.0.x address whose adb-over-Wi-Fi port is free.
    static LoopbackLease wifiOctet();

    int value() const { return m_value; }

private:
    LoopbackLease(const QString &kind, int first, int last, const std::function<bool(int)> &isFree);

    std::unique_ptr<QLockFile> m_lock;
    int m_value = 0;
};
