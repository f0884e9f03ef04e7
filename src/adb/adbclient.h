#pragma once

#include "adbdeviceinfo.h"
#include "deviceinfo.h"

#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

// Every conversation with phones: adb run as a child process once per operation. Stateless and
// synchronous: a call blocks its thread until adb ends or its time-out passes, so long-running
// callers use worker threads. A result text beginning "[error]" reports a failure.
class AdbClient
{
public:
    AdbClient() = delete;

    static QString run(const QStringList &args);
    // Whether a result of run() reports a failure.
    static bool isError(const QString &result) { return result.startsWith(QLatin1String("[error]")); }

    static bool killServer();
    static bool startServer();
    // Kills and starts the server; from then on the server is Korvel's own.
    static bool restartServer();
    // Whether an adb server answers on its port (ANDROID_ADB_SERVER_PORT, or 5037) right now.
    static bool serverListening();
    // Called once at start-up: a server already running then belongs to the user's other tools.
    static void noteServerAtStart();
    // On quit: kills the server only when Korvel started it. True when it was killed.
    static bool killOwnServer();
    static QList<ADBDeviceInfo> devices();
    static bool connect(const QString &serial, const QString &ip, quint16 port);
    // Drops the one network phone at ADDRESS ("ip:port"); "-s S disconnect" would drop them all.
    static bool disconnect(const QString &address);
    static bool usb(const QString &serial);
    static bool tcpip(const QString &serial, quint16 port);
    static bool reboot(const QString &serial);
    static bool shutdown(const QString &serial);
    static bool push(const QString &serial, const QString &localPath, const QString &remotePath);
    static bool removeReverse(const QString &serial, const QString &socketName);

    static QList<ADBDeviceInfo> parseDevices(const QString &text);
    // "wm size" output ("Physical size: 1080x2400"); 0 for a side that is not a number.
    static QSize parseScreenSize(const QString &text);
    // The first IPv4 address after "inet" in "ip addr show" output, or with ifconfig's optional
    // "addr:" too; empty when there is none.
    enum class AddressListing { Ip, Ifconfig };
    static QString parseInetAddress(const QString &text, AddressListing listing);
    // Whether a property value is a whole dotted IPv4 address (octets not range-checked).
    static bool isAddressProperty(const QString &value);
    static DeviceInfo getDeviceInfo(const QString &serial);
    static QString getWifiIpAddress(const QString &serial);
    static bool setWallpaper(const QString &serial, const QString &localImagePath);

    // The two time-outs, in milliseconds. Tests shorten them; the reported text always names the
    // nominal 30 or 300 seconds of the time-out class that ran out.
    static void setTimeouts(int normalMs, int transferMs);
    // Abandoned, calls end at once with an error, and running ones kill their adb: the
    // application's end does this to calls that outlast its wait.
    static void setAbandoned(bool abandoned);
    // The adb program: the one set, else defaultProgram().
    static QString program();
    // The adb bundled beside the executable when there is one, else the one on the PATH; looked
    // up once.
    static QString defaultProgram();
    static void setProgram(const QString &program);

private:
    static bool succeeded(const QStringList &args, const char *failureWord = "error");
};
