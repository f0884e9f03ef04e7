#include "adbclient.h"
#include "testfiles.h"
#include "fakeadb.h"

#include <QTcpServer>
#include <QtTest>

using Args = QStringList;
using Operation = std::function<bool()>;
Q_DECLARE_METATYPE(Operation)

class TestAdbClient : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;

private slots:
    void initTestCase()
    {
        AdbClient::setProgram(m_adb.program());
        // The 30 s class becomes 300 ms, the 300 s class 1.5 s: enough to tell them apart.
        AdbClient::setTimeouts(300, 1500);
    }
    void init() { m_adb.clear(); }

    void runResult_data()
    {
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::addColumn<QString>("expected");
        QTest::newRow("output trimmed") << 0 << "  hello\\nworld \\n\\n" << "" << "hello\nworld";
        QTest::newRow("exit code and untrimmed stderr")
            << 3 << "ignored stdout" << "device offline\\n" << "[error] adb command failed (exit code 3): device offline\n";
        QTest::newRow("no stderr") << 1 << "only stdout" << "" << "[error] adb command failed (exit code 1): unknown error";
    }

    void runResult()
    {
        QFETCH(int, exitCode);
        QFETCH(QString, out);
        QFETCH(QString, err);
        m_adb.addRule("shell echo*", exitCode, out, err);
        QTEST(AdbClient::run({"shell", "echo"}), "expected");
    }

    void timeoutClassFollowsArguments_data()
    {
        QTest::addColumn<Args>("args");
        QTest::addColumn<double>("sleep");
        QTest::addColumn<QString>("expected");
        // 0.8 s is past the short time-out but not the long one; 3 s is past both.
        const QString shortTimeout = "[error] adb command timed out after 30 seconds";
        QTest::newRow("shell") << Args{"-s", "X", "shell", "ls"} << 0.8 << shortTimeout;
        QTest::newRow("push") << Args{"-s", "X", "push", "a", "b"} << 0.8 << "done";
        QTest::newRow("install element") << Args{"-s", "X", "install", "a.apk"} << 0.8 << "done";
        QTest::newRow("pm install in one element") << Args{"-s", "X", "shell", "pm install -r a"} << 0.8 << shortTimeout;
        QTest::newRow("case sensitive") << Args{"Push"} << 0.8 << shortTimeout;
        QTest::newRow("transfer time-out") << Args{"push", "a", "b"} << 3.0
                                           << "[error] adb command timed out after 300 seconds";
    }

    void timeoutClassFollowsArguments()
    {
        QFETCH(Args, args);
        QFETCH(double, sleep);
        m_adb.addRule("*", 0, "done", {}, sleep);
        QTEST(AdbClient::run(args), "expected");
    }

    // What each operation asks of adb, and how it reads adb's answer.
    void operations_data()
    {
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<QList<Args>>("calls");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::addColumn<bool>("result");
        QTest::addColumn<double>("sleep");
        auto row = [](const char *name, Operation op, const QList<Args> &calls, int exitCode = 0,
                      const QString &out = {}, const QString &err = {}, bool result = true, double sleep = 0) {
            QTest::newRow(name) << op << calls << exitCode << out << err << result << sleep;
        };
        const Operation connect = [] { return AdbClient::connect("S1", "127.0.0.5", 5555); };
        const Operation disconnect = [] { return AdbClient::disconnect("127.0.0.1:5555"); };
        const Operation reboot = [] { return AdbClient::reboot("S1"); };
        const Args connectArgs{"-s", "S1", "connect", "127.0.0.5:5555"};
        const Args disconnectArgs{"disconnect", "127.0.0.1:5555"};
        row("killServer", [] { return AdbClient::killServer(); }, {{"kill-server"}});
        row("startServer", [] { return AdbClient::startServer(); }, {{"start-server"}});
        row("devices", [] { return AdbClient::devices().isEmpty(); }, {{"devices", "-l"}});
        row("usb", [] { return AdbClient::usb("S1"); }, {{"-s", "S1", "usb"}});
        row("tcpip", [] { return AdbClient::tcpip("S1", 5555); }, {{"-s", "S1", "tcpip", "5555"}});
        row("removeReverse", [] { return AdbClient::removeReverse("S1", "scrcpy_00001234"); },
            {{"-s", "S1", "reverse", "--remove", "localabstract:scrcpy_00001234"}});
        row("reboot", reboot, {{"-s", "S1", "reboot"}});
        row("reboot without phone", reboot, {{"-s", "S1", "reboot"}}, 1, "", "device not found", false);
        // "failed" is the only failure word of connect: a time-out still counts as success.
        row("connect", connect, {connectArgs});
        row("connect refused", connect, {connectArgs}, 1, "", "failed to connect", false);
        row("connect timing out", connect, {connectArgs}, 0, "", "", true, 0.8);
        // disconnect needs adb's own answer.
        row("disconnect", disconnect, {disconnectArgs}, 0, "disconnected 127.0.0.1:5555");
        row("disconnect unknown address", disconnect, {disconnectArgs}, 1, "error: no such device '127.0.0.1:5555'",
            "", false);
        row("disconnect without the answer", disconnect, {disconnectArgs}, 0, "", "", false);
        // A restart starts only after a kill.
        const Operation restart = [] { return AdbClient::restartServer(); };
        row("restartServer", restart, {{"kill-server"}, {"start-server"}});
        row("restartServer, kill fails", restart, {{"kill-server"}}, 1, "", "cannot connect", false);
        // Nothing to send: no adb at all.
        row("push of a missing file", [] { return !AdbClient::push("S1", "/nonexistent/file.bin", "/data/local/tmp/"); },
            {});
        row("adb missing", [this] {
            AdbClient::setProgram("/nonexistent/adb");
            const QString result = AdbClient::run({"devices"});
            AdbClient::setProgram(m_adb.program());
            return QRegularExpression("^\\[error\\] failed to start adb: .+").match(result).hasMatch();
        }, {});
        row("devices failing", [] { return AdbClient::devices().isEmpty(); }, {{"devices", "-l"}}, 1,
            "List of devices attached\\nA device", "cannot connect to daemon");
        // An emulator is killed, a phone powered off.
        const Operation shutdown = [] { return AdbClient::shutdown("S1"); };
        const Args qemu{"-s", "S1", "shell", "getprop", "ro.kernel.qemu"};
        row("shutdown of an emulator", shutdown, {qemu, {"-s", "S1", "emu", "kill"}}, 0, "1\\n");
        row("shutdown without the property", shutdown, {qemu, {"-s", "S1", "reboot", "-p"}});
        // Any existing file will do as the picture.
        const QString picture = QCoreApplication::applicationFilePath();
        row("setWallpaper", [picture] { return AdbClient::setWallpaper("S1", picture); },
            {{"-s", "S1", "push", picture, "/data/local/tmp/wallpaper_korvel.png"},
             {"-s", "S1", "shell", "am", "start", "-a", "android.intent.action.ATTACH_DATA", "-c",
              "android.intent.category.DEFAULT", "-d", "file:///data/local/tmp/wallpaper_korvel.png", "-t", "image/*",
              "--grant-read-uri-permission"}});
    }

    void operations()
    {
        QFETCH(Operation, operation);
        QFETCH(int, exitCode);
        QFETCH(QString, out);
        QFETCH(QString, err);
        QFETCH(double, sleep);
        m_adb.addRule("*", exitCode, out, err, sleep);
        QTEST(operation(), "result");
        QTEST(m_adb.calls(), "calls");
    }

    void quitKillsOnlyAServerKorvelStarted()
    {
        QTcpServer theUsers;
        QVERIFY(theUsers.listen(QHostAddress::LocalHost));
        qputenv("ANDROID_ADB_SERVER_PORT", QByteArray::number(theUsers.serverPort()));
        // A server of the user's own at start stays, until the user restarts it in Korvel.
        QVERIFY(AdbClient::serverListening());
        AdbClient::noteServerAtStart();
        QVERIFY(!AdbClient::killOwnServer());
        QVERIFY(m_adb.calls().isEmpty());
        QVERIFY(AdbClient::restartServer());
        m_adb.clear();
        QVERIFY(AdbClient::killOwnServer());
        QCOMPARE(m_adb.calls(), QList<Args>{Args{"kill-server"}});
        // No server at start: the one Korvel's own calls start is Korvel's.
        theUsers.close();
        QVERIFY(!AdbClient::serverListening());
        AdbClient::noteServerAtStart();
        QVERIFY(AdbClient::killOwnServer());
        qunsetenv("ANDROID_ADB_SERVER_PORT");
    }

    void defaultProgramPrefersBundledAdbAndIsCached()
    {
        const QString bundled = QCoreApplication::applicationDirPath() + "/third_party/adb/linux/adb";
        QVERIFY(TestFiles::write(bundled, "#!/bin/sh\nexit 0\n"));
        QVERIFY(QFile::setPermissions(bundled, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(AdbClient::defaultProgram(), bundled);
        QVERIFY(QFile::remove(bundled));
        QCOMPARE(AdbClient::defaultProgram(), bundled);
    }

    void parseDevices_data()
    {
        QTest::addColumn<QString>("text");
        // "serial usb|wifi product model transport" per phone.
        QTest::addColumn<QStringList>("devices");
        QTest::newRow("empty") << "List of devices attached\n" << QStringList{};
        QTest::newRow("network") << "List of devices attached\r\n192.168.1.5:5555 device product:x model:Y transport_id:7\r\n"
                                 << QStringList{"192.168.1.5:5555 wifi x Y 7"};
        QTest::newRow("usb word") << "ABC123 device usb:1-1 product:p model:m transport_id:3"
                                  << QStringList{"ABC123 usb p m 3"};
        QTest::newRow("unauthorized and offline skipped")
            << "ABC123 unauthorized usb:1-1 transport_id:3\nDEF offline\nGHI device\nJKL" << QStringList{"GHI usb   -1"};
        QTest::newRow("network serial with usb path word")
            << "127.0.0.1:5555 device 1-1.2 model:m" << QStringList{"127.0.0.1:5555 usb  m -1"};
        QTest::newRow("mdns-like serial stays usb")
            << "adb-XYZ._adb-tls-connect._tcp device" << QStringList{"adb-XYZ._adb-tls-connect._tcp usb   -1"};
        QTest::newRow("transport id out of range") << "Z device transport_id:99999999999" << QStringList{"Z usb   -1"};
    }

    void parseDevices()
    {
        QFETCH(QString, text);
        QStringList parsed;
        for (const ADBDeviceInfo &info : AdbClient::parseDevices(text)) {
            parsed << QString("%1 %2 %3 %4 %5").arg(info.adb_serial, info.is_usb_connection ? "usb" : "wifi",
                                                    info.product, info.model)
                          .arg(info.transport_id);
        }
        QTEST(parsed, "devices");
    }

    void deviceInfoReadsEveryProperty()
    {
        m_adb.addRule("-s S1 shell getprop ro.product.model", 0, "Pixel 7\\n");
        m_adb.addRule("-s S1 shell getprop ro.product.manufacturer", 0, "Google\\n");
        m_adb.addRule("-s S1 shell getprop ro.boot.ddr_size", 1, {}, "boom");
        m_adb.addRule("-s S1 shell wm size", 0, "Physical size: 1080x2400\\n");
        const DeviceInfo info = AdbClient::getDeviceInfo("S1");
        QCOMPARE(info.model, QString("Pixel 7"));
        QCOMPARE(info.manufacturer, QString("Google"));
        QCOMPARE(info.ddr_size, QString("[error] adb command failed (exit code 1): boom"));
        QCOMPARE(info.screen_size, QSize(1080, 2400));
        QList<Args> expected;
        for (const char *key : {"ro.product.manufacturer", "ro.product.model", "ro.build.version.release", "ro.serialno",
                                "ro.build.fingerprint", "ro.csc.country_code", "ro.csc.sales_code", "gsm.operator.alpha",
                                "service.adb.tcp.port", "sys.usb.config", "ro.boot.ddr_size"})
            expected << Args{"-s", "S1", "shell", "getprop", key};
        expected << Args{"-s", "S1", "shell", "wm", "size"};
        QCOMPARE(m_adb.calls(), expected);
        QCOMPARE(AdbClient::parseScreenSize("Physical size: unknown"), QSize(0, 0));
    }

    void wifiAddressFallbacks_data()
    {
        QTest::addColumn<QString>("ipAddr");
        QTest::addColumn<QString>("ifconfig");
        QTest::addColumn<QString>("dhcp");
        QTest::addColumn<QString>("eth0");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("callCount");
        const QString wlan = "3: wlan0: <BROADCAST,MULTICAST,UP> mtu 1500\\n    inet 127.0.0.11/24 brd 127.0.0.255 scope global wlan0\\n";
        QTest::newRow("ip addr") << wlan << "" << "" << "" << "127.0.0.11" << 1;
        QTest::newRow("ifconfig addr:") << "" << "wlan0 Link encap:Ethernet\\n inet addr:127.0.0.12  Bcast:127.0.0.255" << "" << ""
                                        << "127.0.0.12" << 2;
        QTest::newRow("dhcp property") << "" << "" << "127.0.0.13" << "" << "127.0.0.13" << 3;
        QTest::newRow("dhcp junk then eth0") << "" << "" << "none" << "inet 127.0.0.14/8 scope" << "127.0.0.14" << 4;
        QTest::newRow("octets not range checked") << "inet 999.1.1.1/24" << "" << "" << "" << "999.1.1.1" << 1;
        QTest::newRow("nothing") << "" << "" << "" << "" << "" << 4;
    }

    void wifiAddressFallbacks()
    {
        QFETCH(QString, ipAddr);
        QFETCH(QString, ifconfig);
        QFETCH(QString, dhcp);
        QFETCH(QString, eth0);
        m_adb.addRule("-s S1 shell ip addr show wlan0", ipAddr.isEmpty() ? 1 : 0, ipAddr, "Device \"wlan0\" does not exist.");
        m_adb.addRule("-s S1 shell ifconfig wlan0", 0, ifconfig);
        m_adb.addRule("-s S1 shell getprop dhcp.wlan0.ipaddress", 0, dhcp);
        m_adb.addRule("-s S1 shell ip addr show eth0", 0, eth0);
        QTEST(AdbClient::getWifiIpAddress("S1"), "expected");
        QTEST(int(m_adb.calls().size()), "callCount");
        QCOMPARE(m_adb.calls().first(), (Args{"-s", "S1", "shell", "ip addr show wlan0"}));
    }
};

QTEST_GUILESS_MAIN(TestAdbClient)
#include "tst_adbclient.moc"
