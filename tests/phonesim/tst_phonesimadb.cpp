// The simulated phone as Debian's adb sees it: listing, shell, push, tunnels, Wi-Fi adb, admin.
#include "adbrunner.h"
#include "phonesimprocess.h"

#include <QCryptographicHash>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {
constexpr quint16 AdbServerPort = 15101;
}

class TestPhoneSimAdb : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void devicesListsProductAndModel();
    void shellAnswersLikeAPhone_data();
    void shellAnswersLikeAPhone();
    void unknownCommandExits127();
    void pushArrivesWhole();
    void pmInstallChecksTheFile();
    void reverseListAndRemove();
    void forwardEchoCarriesBytesBothWays();
    void forwardToUnknownPortIsRefused();
    void vanishDropsThePhone();
    void tcpipThenWifiConnect();
    void rebootComesBackAndPowerOffStaysAway();
    void closingTheShellKillsTheServer();
    void ctlKillServerEndsTheShell();
    void ctlAnswers();

private:
    AdbRunner::Result shell(const QStringList &args) const;
    bool startPhone(const QStringList &extraArgs = {});
    QString adbOut(const QStringList &args) const;

    AdbRunner m_adb{AdbServerPort};
    std::unique_ptr<PhoneSimProcess> m_phone;
};

void TestPhoneSimAdb::initTestCase()
{
    if (!AdbRunner::available())
        QSKIP("adb is not installed");
    QVERIFY2(QFile::exists(PhoneSimProcess::binary()), qPrintable(PhoneSimProcess::binary()));
}

void TestPhoneSimAdb::init()
{
    QVERIFY(startPhone({"--model", "Galaxy S23 Ultra", "--manufacturer", "samsung", "--product", "dm3qzhx",
                        "--device", "dm3q", "--size", "720x1600", "--android", "13", "--reboot-delay", "100"}));
}

void TestPhoneSimAdb::cleanup()
{
    m_adb.killServer();
    m_phone.reset();
}

bool TestPhoneSimAdb::startPhone(const QStringList &extraArgs)
{
    m_phone = std::make_unique<PhoneSimProcess>();
    QString error;
    if (!m_phone->start(extraArgs, &error)) {
        qWarning("%s", qPrintable(error));
        return false;
    }
    const AdbRunner::Result connected = m_adb.run({"connect", m_phone->serial()});
    if (!connected.out.contains("connected to")) {
        qWarning("adb connect: %s %s", connected.out.constData(), connected.err.constData());
        return false;
    }
    for (int i = 0; i < 100; ++i) {
        if (m_adb.listed(m_phone->serial()))
            return true;
        QTest::qWait(100);
    }
    return false;
}

AdbRunner::Result TestPhoneSimAdb::shell(const QStringList &args) const
{
    return m_adb.run(QStringList{"-s", m_phone->serial(), "shell"} + args);
}

QString TestPhoneSimAdb::adbOut(const QStringList &args) const
{
    return QString::fromUtf8(m_adb.run(QStringList{"-s", m_phone->serial()} + args).out);
}

void TestPhoneSimAdb::devicesListsProductAndModel()
{
    const QString listing = QString::fromUtf8(m_adb.run({"devices", "-l"}).out);
    const QRegularExpression line(QRegularExpression::escape(m_phone->serial())
                                  + "\\s+device product:dm3qzhx model:Galaxy_S23_Ultra device:dm3q transport_id:\\d+");
    QVERIFY2(line.match(listing).hasMatch(), qPrintable(listing));
}

void TestPhoneSimAdb::shellAnswersLikeAPhone_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("stdoutPattern");   // %W is replaced by the Wi-Fi address

    QTest::newRow("model") << QStringList{"getprop", "ro.product.model"} << 0 << "^Galaxy S23 Ultra\\n$";
    QTest::newRow("manufacturer") << QStringList{"getprop", "ro.product.manufacturer"} << 0 << "^samsung\\n$";
    QTest::newRow("release") << QStringList{"getprop", "ro.build.version.release"} << 0 << "^13\\n$";
    QTest::newRow("sdk") << QStringList{"getprop", "ro.build.version.sdk"} << 0 << "^33\\n$";
    QTest::newRow("qemu") << QStringList{"getprop", "ro.kernel.qemu"} << 0 << "^0\\n$";
    QTest::newRow("serialno") << QStringList{"getprop", "ro.serialno"} << 0 << "^R5C[0-9A-Z]{8}\\n$";
    QTest::newRow("fingerprint") << QStringList{"getprop", "ro.build.fingerprint"} << 0
                                 << "^samsung/dm3qzhx/dm3q:13/\\S+:user/release-keys\\n$";
    for (const char *key : {"ro.boot.ddr_size", "ro.csc.country_code", "ro.csc.sales_code", "gsm.operator.alpha",
                            "sys.usb.config", "ro.product.name"})
        QTest::newRow(key) << QStringList{"getprop", key} << 0 << "^\\S.*\\n$";
    QTest::newRow("tcp port before tcpip") << QStringList{"getprop", "service.adb.tcp.port"} << 0 << "^\\n$";
    QTest::newRow("unknown key") << QStringList{"getprop", "no.such.key"} << 0 << "^\\n$";
    QTest::newRow("all properties") << QStringList{"getprop"} << 0 << "\\[ro.product.model\\]: \\[Galaxy S23 Ultra\\]\\n";
    QTest::newRow("wm size") << QStringList{"wm", "size"} << 0 << "^Physical size: 720x1600\\n$";
    QTest::newRow("dhcp address") << QStringList{"getprop", "dhcp.wlan0.ipaddress"} << 0 << "^%W\\n$";
    QTest::newRow("ip addr wlan0") << QStringList{"ip addr show wlan0"} << 0 << "inet\\s+%W/8 ";
    QTest::newRow("ifconfig wlan0") << QStringList{"ifconfig wlan0"} << 0 << "inet\\s+addr:%W ";
    QTest::newRow("ip addr eth0") << QStringList{"ip addr show eth0"} << 1 << "^$";
    QTest::newRow("sequence") << QStringList{"echo a && false; echo 'b c' || echo no"} << 0 << "^a\\nb c\\n$";
    QTest::newRow("pwd") << QStringList{"pwd"} << 0 << "^/\\n$";
    QTest::newRow("ls") << QStringList{"ls", "/data/local"} << 0 << "^tmp\\n$";
}

void TestPhoneSimAdb::shellAnswersLikeAPhone()
{
    QFETCH(QStringList, args);
    QFETCH(int, exitCode);
    QFETCH(QString, stdoutPattern);
    const AdbRunner::Result result = shell(args);
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, exitCode);
    stdoutPattern.replace("%W", QRegularExpression::escape(m_phone->wifiAddress()));
    QVERIFY2(QRegularExpression(stdoutPattern).match(QString::fromUtf8(result.out)).hasMatch(), result.out.constData());
    const QList<QJsonObject> shells = m_phone->journal("shell");
    QVERIFY(!shells.isEmpty());
    QCOMPARE(shells.last().value("command").toString(), args.join(' '));
}

void TestPhoneSimAdb::unknownCommandExits127()
{
    const AdbRunner::Result result = shell({"false-command", "--flag"});
    QCOMPARE(result.exitCode, 127);
    QCOMPARE(result.out, QByteArray());
    QCOMPARE(result.err, QByteArray("/system/bin/sh: false-command: inaccessible or not found\n"));
}

void TestPhoneSimAdb::pushArrivesWhole()
{
    QTemporaryDir dir;
    const QString local = dir.filePath("payload.bin");
    QByteArray payload(5 * 1024 * 1024 + 123, '\0');
    QRandomGenerator rng(42);
    rng.fillRange(reinterpret_cast<quint32 *>(payload.data()), payload.size() / 4);
    QFile file(local);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(payload);
    file.close();
    const QString sha = QString::fromLatin1(QCryptographicHash::hash(payload, QCryptographicHash::Sha256).toHex());

    const AdbRunner::Result result = m_adb.run({"-s", m_phone->serial(), "push", local, "/data/local/tmp/"});
    QCOMPARE(result.exitCode, 0);
    QFile arrived(m_phone->sandboxPath("/data/local/tmp/payload.bin"));
    QVERIFY(arrived.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromLatin1(QCryptographicHash::hash(arrived.readAll(), QCryptographicHash::Sha256).toHex()), sha);
    const QList<QJsonObject> pushes = m_phone->journal("push");
    QCOMPARE(pushes.size(), 1);
    QCOMPARE(pushes.first().value("path").toString(), QString("/data/local/tmp/payload.bin"));
    QCOMPARE(pushes.first().value("size").toInteger(), qint64(payload.size()));
    QCOMPARE(pushes.first().value("sha256").toString(), sha);

    // Into a folder that does not exist yet: the phone makes it.
    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "push", local, "/sdcard/Korvel/new/x.bin"}).exitCode, 0);
    QCOMPARE(QFileInfo(m_phone->sandboxPath("/sdcard/Korvel/new/x.bin")).size(), qint64(payload.size()));
}

void TestPhoneSimAdb::pmInstallChecksTheFile()
{
    QTemporaryDir dir;
    QFile apk(dir.filePath("app.apk"));
    QVERIFY(apk.open(QIODevice::WriteOnly));
    apk.write(QByteArray("PK\x03\x04", 4) + QByteArray(200, 'z'));
    apk.close();
    QFile junk(dir.filePath("junk.apk"));
    QVERIFY(junk.open(QIODevice::WriteOnly));
    junk.write("not a zip");
    junk.close();
    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "push", apk.fileName(), "/data/local/tmp/"}).exitCode, 0);
    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "push", junk.fileName(), "/data/local/tmp/"}).exitCode, 0);

    AdbRunner::Result result = shell({"pm install -r /data/local/tmp/app.apk"});
    QCOMPARE(result.out, QByteArray("Success\n"));
    QCOMPARE(result.exitCode, 0);
    result = shell({"pm install -r /data/local/tmp/junk.apk"});
    QVERIFY2(result.out.startsWith("Failure [INSTALL_FAILED_INVALID_APK"), result.out.constData());
    result = shell({"pm install -r /data/local/tmp/never-pushed.apk"});
    QVERIFY2(result.out.startsWith("Failure ["), result.out.constData());
    QVERIFY(result.exitCode != 0);

    const QList<QJsonObject> installs = m_phone->journal("install");
    QCOMPARE(installs.size(), 3);
    QCOMPARE(installs.at(0).value("path").toString(), QString("/data/local/tmp/app.apk"));
    QCOMPARE(installs.at(0).value("ok").toBool(), true);
    QCOMPARE(installs.at(0).value("sha256").toString().size(), 64);
    QCOMPARE(installs.at(1).value("ok").toBool(), false);
    QCOMPARE(installs.at(2).value("ok").toBool(), false);
}

void TestPhoneSimAdb::reverseListAndRemove()
{
    const QString serial = m_phone->serial();
    QCOMPARE(m_adb.run({"-s", serial, "reverse", "localabstract:scrcpy_0000abcd", "tcp:27183"}).exitCode, 0);
    QCOMPARE(m_adb.run({"-s", serial, "reverse", "localabstract:other", "tcp:27184"}).exitCode, 0);
    QString list = adbOut({"reverse", "--list"});
    QVERIFY2(list.contains("localabstract:scrcpy_0000abcd tcp:27183\n"), qPrintable(list));
    QVERIFY2(list.contains("localabstract:other tcp:27184\n"), qPrintable(list));

    QCOMPARE(m_adb.run({"-s", serial, "reverse", "--remove", "localabstract:scrcpy_0000abcd"}).exitCode, 0);
    list = adbOut({"reverse", "--list"});
    QVERIFY2(!list.contains("scrcpy_0000abcd"), qPrintable(list));
    QVERIFY(list.contains("localabstract:other"));

    const AdbRunner::Result again = m_adb.run({"-s", serial, "reverse", "--remove", "localabstract:scrcpy_0000abcd"});
    QVERIFY(again.exitCode != 0);
    QVERIFY2(again.err.contains("not found"), again.err.constData());

    QCOMPARE(m_adb.run({"-s", serial, "reverse", "--remove-all"}).exitCode, 0);
    QVERIFY(adbOut({"reverse", "--list"}).trimmed().isEmpty());

    const QList<QJsonObject> journal = m_phone->journal("reverse");
    QVERIFY(journal.size() >= 6);
    QCOMPARE(journal.first().value("action").toString(), QString("forward"));
    QCOMPARE(journal.first().value("local").toString(), QString("localabstract:scrcpy_0000abcd"));
    QCOMPARE(journal.first().value("remote").toString(), QString("tcp:27183"));
}

void TestPhoneSimAdb::forwardEchoCarriesBytesBothWays()
{
    const quint16 local = PhoneSimProcess::freePort();
    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "forward", QString("tcp:%1").arg(local), "tcp:7"}).exitCode, 0);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, local);
    QVERIFY(socket.waitForConnected(5000));
    QByteArray payload(2 * 1024 * 1024 + 17, '\0');
    for (int i = 0; i < payload.size(); ++i)
        payload[i] = char((i * 7 + i / 251) & 0xff);
    socket.write(payload);
    QByteArray echoed;
    QTRY_VERIFY_WITH_TIMEOUT((echoed += socket.readAll()).size() >= payload.size(), 20000);
    QCOMPARE(echoed, payload);
    QTRY_VERIFY(!m_phone->journal("forward").isEmpty());
    QCOMPARE(m_phone->journal("forward").first().value("port").toInt(), 7);
}

void TestPhoneSimAdb::forwardToUnknownPortIsRefused()
{
    const quint16 local = PhoneSimProcess::freePort();
    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "forward", QString("tcp:%1").arg(local), "tcp:9999"}).exitCode, 0);
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, local);
    QVERIFY(socket.waitForConnected(5000));
    QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, 10000);
    const QList<QJsonObject> forwards = m_phone->journal("forward");
    QCOMPARE(forwards.size(), 1);
    QCOMPARE(forwards.first().value("accepted").toBool(), false);
}

void TestPhoneSimAdb::vanishDropsThePhone()
{
    QString output;
    QCOMPARE(m_phone->ctl({"vanish"}, &output), 0);
    QCOMPARE(output, QString("ok"));
    // adb 29 keeps a dropped network phone as "offline" while it retries; it is never "device" again.
    QTRY_VERIFY_WITH_TIMEOUT(!m_adb.listed(m_phone->serial()), 10000);
    QTcpSocket probe;
    probe.connectToHost(QHostAddress::LocalHost, m_phone->port());
    QVERIFY(!probe.waitForConnected(2000));
    QCOMPARE(m_phone->journal("vanish").size(), 1);
}

void TestPhoneSimAdb::tcpipThenWifiConnect()
{
    const AdbRunner::Result result = m_adb.run({"-s", m_phone->serial(), "tcpip", "5555"});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, QByteArray("restarting in TCP mode port: 5555\n"));
    const QString wifiSerial = m_phone->wifiAddress() + ":5555";
    QTRY_VERIFY_WITH_TIMEOUT(m_adb.run({"connect", wifiSerial}).out.contains("connected to " + wifiSerial.toUtf8()), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(m_adb.listed(wifiSerial), 10000);
    QCOMPARE(m_adb.run({"-s", wifiSerial, "shell", "getprop", "ro.product.model"}).out, QByteArray("Galaxy S23 Ultra\n"));
    QCOMPARE(shell({"getprop", "service.adb.tcp.port"}).out, QByteArray("5555\n"));
    const QList<QJsonObject> journal = m_phone->journal("tcpip");
    QCOMPARE(journal.size(), 1);
    QCOMPARE(journal.first().value("port").toInt(), 5555);

    // Back to "USB": Wi-Fi adb stops, the cable side comes back by itself.
    const AdbRunner::Result usb = m_adb.run({"-s", m_phone->serial(), "usb"});
    QCOMPARE(usb.out, QByteArray("restarting in USB mode\n"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_adb.listed(wifiSerial), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(m_adb.listed(m_phone->serial()), 30000);
    QCOMPARE(shell({"getprop", "service.adb.tcp.port"}).out, QByteArray("\n"));
}

void TestPhoneSimAdb::rebootComesBackAndPowerOffStaysAway()
{
    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "reboot"}).exitCode, 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("reboot").size(), 1, 5000);
    QCOMPARE(m_phone->journal("reboot").first().value("mode").toString(), QString());
    // adb reconnects by itself once the phone listens again.
    QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("boot").size(), 1, 5000);
    QTRY_VERIFY_WITH_TIMEOUT(m_adb.listed(m_phone->serial()), 30000);

    QCOMPARE(m_adb.run({"-s", m_phone->serial(), "reboot", "-p"}).exitCode, 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("reboot").size(), 2, 5000);
    QCOMPARE(m_phone->journal("reboot").last().value("mode").toString(), QString("-p"));
    QTRY_VERIFY_WITH_TIMEOUT(!m_adb.listed(m_phone->serial()), 10000);
    QTest::qWait(500);
    QTcpSocket probe;
    probe.connectToHost(QHostAddress::LocalHost, m_phone->port());
    QVERIFY(!probe.waitForConnected(2000));
}

void TestPhoneSimAdb::closingTheShellKillsTheServer()
{
    QTemporaryDir dir;
    QFile jar(dir.filePath("scrcpy-server"));
    QVERIFY(jar.open(QIODevice::WriteOnly));
    jar.write(QByteArray("PK\x03\x04", 4) + QByteArray(1000, 's'));
    jar.close();
    const QString serial = m_phone->serial();
    QCOMPARE(m_adb.run({"-s", serial, "push", jar.fileName(), "/data/local/tmp/scrcpy-server.jar"}).exitCode, 0);

    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    QCOMPARE(m_adb.run({"-s", serial, "reverse", "localabstract:scrcpy_00001234",
                        QString("tcp:%1").arg(listener.serverPort())}).exitCode, 0);
    std::unique_ptr<QProcess> adbShell(m_adb.start(
        {"-s", serial, "shell", "CLASSPATH=/data/local/tmp/scrcpy-server.jar", "app_process", "/",
         "com.genymobile.scrcpy.Server", "3.3.1", "video_bit_rate=2000000", "max_size=280", "max_fps=5",
         "scid=00001234", "control=false", "video=true", "audio=false"}));
    QTRY_VERIFY_WITH_TIMEOUT(listener.hasPendingConnections(), 15000);
    std::unique_ptr<QTcpSocket> video(listener.nextPendingConnection());
    QTRY_VERIFY_WITH_TIMEOUT(video->bytesAvailable() > 0, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("server_start").size(), 1, 5000);

    // The adb process on the PC dies: the phone's shell stream closes and the server with it.
    adbShell->kill();
    adbShell->waitForFinished(3000);
    QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("server_stop").size(), 1, 10000);
    QCOMPARE(m_phone->journal("server_stop").first().value("reason").toString(), QString("killed"));
    QTRY_COMPARE_WITH_TIMEOUT(video->state(), QAbstractSocket::UnconnectedState, 10000);
}

void TestPhoneSimAdb::ctlKillServerEndsTheShell()
{
    QTemporaryDir dir;
    QFile jar(dir.filePath("scrcpy-server"));
    QVERIFY(jar.open(QIODevice::WriteOnly));
    jar.write(QByteArray("PK\x03\x04", 4) + QByteArray(1000, 's'));
    jar.close();
    const QString serial = m_phone->serial();
    QCOMPARE(m_adb.run({"-s", serial, "push", jar.fileName(), "/data/local/tmp/scrcpy-server.jar"}).exitCode, 0);
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    QCOMPARE(m_adb.run({"-s", serial, "reverse", "localabstract:scrcpy_0000beef",
                        QString("tcp:%1").arg(listener.serverPort())}).exitCode, 0);
    std::unique_ptr<QProcess> adbShell(m_adb.start(
        {"-s", serial, "shell", "CLASSPATH=/data/local/tmp/scrcpy-server.jar app_process / "
                                "com.genymobile.scrcpy.Server 3.3.1 scid=0000beef audio=false control=false"}));
    QTRY_VERIFY_WITH_TIMEOUT(listener.hasPendingConnections(), 15000);
    std::unique_ptr<QTcpSocket> video(listener.nextPendingConnection());

    QCOMPARE(m_phone->ctl({"kill-server"}), 0);
    QTRY_COMPARE_WITH_TIMEOUT(adbShell->state(), QProcess::NotRunning, 10000);
    QCOMPARE(adbShell->exitCode(), 137);
    QVERIFY(adbShell->readAllStandardOutput().contains("[server]"));
    QTRY_COMPARE_WITH_TIMEOUT(video->state(), QAbstractSocket::UnconnectedState, 10000);

    // pkill finds nothing left to kill.
    QCOMPARE(shell({"pkill", "-f", "com.genymobile.scrcpy.Server"}).exitCode, 1);
}

void TestPhoneSimAdb::ctlAnswers()
{
    QString output;
    QCOMPARE(m_phone->ctl({"clipboard", "hello phone"}, &output), 0);
    QCOMPARE(output, QString("ok"));
    QCOMPARE(m_phone->ctl({"rotate"}, &output), 0);
    QVERIFY(m_phone->ctl({"no-such-command"}, &output) != 0);
    QVERIFY(output.startsWith("error:"));
    const QList<QJsonObject> journal = m_phone->journal("ctl");
    QCOMPARE(journal.size(), 3);
    QCOMPARE(journal.first().value("arg").toString(), QString("hello phone"));

    QCOMPARE(m_phone->ctl({"quit"}, &output), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!m_adb.listed(m_phone->serial()), 10000);
    PhoneSimProcess absent;
    QVERIFY(absent.ctl({"rotate"}, &output) != 0);
}

QTEST_GUILESS_MAIN(TestPhoneSimAdb)
#include "tst_phonesimadb.moc"
