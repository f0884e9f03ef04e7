// The simulated phone as Debian's adb sees it: listing, shell, push, tunnels, Wi-Fi adb, admin.
#include "phonefixture.h"

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

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile file(dir.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return file.fileName();
}

QString sha256(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

bool accepts(quint16 port)
{
    QTcpSocket probe;
    probe.connectToHost(QHostAddress::LocalHost, port);
    return probe.waitForConnected(2000);
}
} // namespace

class TestPhoneSimAdb : public QObject
{
    Q_OBJECT

    std::unique_ptr<PhoneFixture> m_fixture;
    PhoneSimProcess *m_phone = nullptr;
    QTemporaryDir m_dir;

    const AdbRunner &host() const { return m_fixture->adb(); }
    AdbRunner::Result adb(const QStringList &args) const { return host().run(QStringList{"-s", m_phone->serial()} + args); }
    AdbRunner::Result shell(const QStringList &args) const { return adb(QStringList{"shell"} + args); }

private slots:
    void initTestCase()
    {
        if (!AdbRunner::available())
            QSKIP("adb is not installed");
        QVERIFY2(QFile::exists(PhoneSimProcess::binary()), qPrintable(PhoneSimProcess::binary()));
    }

    void init()
    {
        m_fixture = std::make_unique<PhoneFixture>();
        m_phone = m_fixture->addPhone(QSize(720, 1600), {"--model", "Galaxy S23 Ultra", "--manufacturer", "samsung",
                                                         "--product", "dm3qzhx", "--device", "dm3q", "--android",
                                                         "13", "--reboot-delay", "100"});
        QVERIFY2(m_phone, qPrintable(m_fixture->error()));
    }

    void cleanup() { m_fixture.reset(); }

    void devicesListsProductAndModel()
    {
        const QString listing = QString::fromUtf8(host().run({"devices", "-l"}).out);
        const QRegularExpression line(QRegularExpression::escape(m_phone->serial())
                                      + "\\s+device product:dm3qzhx model:Galaxy_S23_Ultra device:dm3q transport_id:\\d+");
        QVERIFY2(line.match(listing).hasMatch(), qPrintable(listing));
    }

    void shellAnswersLikeAPhone_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("stdoutPattern"); // %W is replaced by the Wi-Fi address
        QTest::addColumn<QString>("errText");

        QTest::newRow("model") << QStringList{"getprop", "ro.product.model"} << 0 << "^Galaxy S23 Ultra\\n$" << "";
        QTest::newRow("sdk") << QStringList{"getprop", "ro.build.version.sdk"} << 0 << "^33\\n$" << "";
        QTest::newRow("serialno") << QStringList{"getprop", "ro.serialno"} << 0 << "^R5C[0-9A-Z]{8}\\n$" << "";
        QTest::newRow("fingerprint") << QStringList{"getprop", "ro.build.fingerprint"} << 0
                                     << "^samsung/dm3qzhx/dm3q:13/\\S+:user/release-keys\\n$" << "";
        QTest::newRow("unknown key") << QStringList{"getprop", "no.such.key"} << 0 << "^\\n$" << "";
        QTest::newRow("all properties") << QStringList{"getprop"} << 0
                                        << "\\[ro.product.model\\]: \\[Galaxy S23 Ultra\\]\\n" << "";
        QTest::newRow("wm size") << QStringList{"wm", "size"} << 0 << "^Physical size: 720x1600\\n$" << "";
        QTest::newRow("ip addr wlan0") << QStringList{"ip addr show wlan0"} << 0 << "inet\\s+%W/8 " << "";
        QTest::newRow("ifconfig wlan0") << QStringList{"ifconfig wlan0"} << 0 << "inet\\s+addr:%W " << "";
        QTest::newRow("ip addr eth0") << QStringList{"ip addr show eth0"} << 1 << "^$"
                                      << "Device \"eth0\" does not exist.\n";
        QTest::newRow("sequence") << QStringList{"echo a && false; echo 'b c' || echo no"} << 0 << "^a\\nb c\\n$" << "";
        QTest::newRow("pwd") << QStringList{"pwd"} << 0 << "^/\\n$" << "";
        QTest::newRow("ls") << QStringList{"ls", "/data/local"} << 0 << "^tmp\\n$" << "";
        QTest::newRow("unknown command") << QStringList{"false-command", "--flag"} << 127 << "^$"
                                         << "/system/bin/sh: false-command: inaccessible or not found\n";
    }

    void shellAnswersLikeAPhone()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, stdoutPattern);
        QFETCH(QString, errText);
        const AdbRunner::Result result = shell(args);
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, exitCode);
        stdoutPattern.replace("%W", QRegularExpression::escape(m_phone->wifiAddress()));
        QVERIFY2(QRegularExpression(stdoutPattern).match(QString::fromUtf8(result.out)).hasMatch(), result.out.constData());
        QCOMPARE(QString::fromUtf8(result.err), errText);
        const QList<QJsonObject> shells = m_phone->journal("shell");
        QVERIFY(!shells.isEmpty());
        QCOMPARE(shells.last().value("command").toString(), args.join(' '));
    }

    void pushArrivesWhole()
    {
        QByteArray payload(5 * 1024 * 1024 + 123, '\0');
        QRandomGenerator(42).fillRange(reinterpret_cast<quint32 *>(payload.data()), payload.size() / 4);
        const QString local = writeFile(m_dir, "payload.bin", payload);

        QCOMPARE(adb({"push", local, "/data/local/tmp/"}).exitCode, 0);
        QFile arrived(m_phone->sandboxPath("/data/local/tmp/payload.bin"));
        QVERIFY(arrived.open(QIODevice::ReadOnly));
        QCOMPARE(sha256(arrived.readAll()), sha256(payload));
        const QList<QJsonObject> pushes = m_phone->journal("push");
        QCOMPARE(pushes.size(), 1);
        QCOMPARE(pushes.first().value("path").toString(), QString("/data/local/tmp/payload.bin"));
        QCOMPARE(pushes.first().value("size").toInteger(), qint64(payload.size()));
        QCOMPARE(pushes.first().value("sha256").toString(), sha256(payload));

        // Into a folder that does not exist yet: the phone makes it.
        QCOMPARE(adb({"push", local, "/sdcard/Korvel/new/x.bin"}).exitCode, 0);
        QCOMPARE(QFileInfo(m_phone->sandboxPath("/sdcard/Korvel/new/x.bin")).size(), qint64(payload.size()));
    }

    void pmInstallChecksTheFile()
    {
        const QString apk = writeFile(m_dir, "app.apk", QByteArray("PK\x03\x04", 4) + QByteArray(200, 'z'));
        const QString junk = writeFile(m_dir, "junk.apk", "not a zip");
        QCOMPARE(adb({"push", apk, "/data/local/tmp/"}).exitCode, 0);
        QCOMPARE(adb({"push", junk, "/data/local/tmp/"}).exitCode, 0);

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

    void reverseListAndRemove()
    {
        auto list = [this] { return QString::fromUtf8(adb({"reverse", "--list"}).out); };
        QCOMPARE(adb({"reverse", "localabstract:scrcpy_0000abcd", "tcp:27183"}).exitCode, 0);
        QCOMPARE(adb({"reverse", "localabstract:other", "tcp:27184"}).exitCode, 0);
        QVERIFY2(list().contains("localabstract:scrcpy_0000abcd tcp:27183\n"), qPrintable(list()));
        QVERIFY2(list().contains("localabstract:other tcp:27184\n"), qPrintable(list()));

        QCOMPARE(adb({"reverse", "--remove", "localabstract:scrcpy_0000abcd"}).exitCode, 0);
        QVERIFY2(!list().contains("scrcpy_0000abcd"), qPrintable(list()));
        QVERIFY(list().contains("localabstract:other"));

        const AdbRunner::Result again = adb({"reverse", "--remove", "localabstract:scrcpy_0000abcd"});
        QVERIFY(again.exitCode != 0);
        QVERIFY2(again.err.contains("not found"), again.err.constData());

        QCOMPARE(adb({"reverse", "--remove-all"}).exitCode, 0);
        QVERIFY(list().trimmed().isEmpty());

        const QList<QJsonObject> journal = m_phone->journal("reverse");
        QVERIFY(journal.size() >= 6);
        QCOMPARE(journal.first().value("action").toString(), QString("forward"));
        QCOMPARE(journal.first().value("local").toString(), QString("localabstract:scrcpy_0000abcd"));
        QCOMPARE(journal.first().value("remote").toString(), QString("tcp:27183"));
    }

    void forward_data()
    {
        QTest::addColumn<int>("remotePort");
        QTest::newRow("echo service carries bytes both ways") << 7;
        QTest::newRow("unknown port is refused") << 9999;
    }

    void forward()
    {
        QFETCH(int, remotePort);
        const quint16 local = PhoneSimProcess::freePort();
        QCOMPARE(adb({"forward", QString("tcp:%1").arg(local), QString("tcp:%1").arg(remotePort)}).exitCode, 0);
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, local);
        QVERIFY(socket.waitForConnected(5000));
        if (remotePort == 7) {
            QByteArray payload(2 * 1024 * 1024 + 17, '\0');
            for (int i = 0; i < payload.size(); ++i)
                payload[i] = char((i * 7 + i / 251) & 0xff);
            socket.write(payload);
            QByteArray echoed;
            QTRY_VERIFY_WITH_TIMEOUT((echoed += socket.readAll()).size() >= payload.size(), 20000);
            QCOMPARE(echoed, payload);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, 10000);
        }
        QTRY_VERIFY(!m_phone->journal("forward").isEmpty());
        const QList<QJsonObject> forwards = m_phone->journal("forward");
        QCOMPARE(forwards.first().value("port").toInt(), remotePort);
        if (remotePort != 7) {
            QCOMPARE(forwards.size(), 1);
            QCOMPARE(forwards.first().value("accepted").toBool(), false);
        }
    }

    void vanishDropsThePhone()
    {
        QString output;
        QCOMPARE(m_phone->ctl({"vanish"}, &output), 0);
        QCOMPARE(output, QString("ok"));
        // adb 29 keeps a dropped network phone as "offline" while it retries; it is never "device" again.
        QTRY_VERIFY_WITH_TIMEOUT(!host().listed(m_phone->serial()), 10000);
        QVERIFY(!accepts(m_phone->port()));
        QCOMPARE(m_phone->journal("vanish").size(), 1);
    }

    void tcpipThenWifiConnect()
    {
        const AdbRunner::Result result = adb({"tcpip", "5555"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, QByteArray("restarting in TCP mode port: 5555\n"));
        const QString wifiSerial = m_phone->wifiAddress() + ":5555";
        QTRY_VERIFY_WITH_TIMEOUT(host().run({"connect", wifiSerial}).out.contains("connected to " + wifiSerial.toUtf8()), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(host().listed(wifiSerial), 10000);
        QCOMPARE(host().run({"-s", wifiSerial, "shell", "getprop", "ro.product.model"}).out, QByteArray("Galaxy S23 Ultra\n"));
        QCOMPARE(shell({"getprop", "service.adb.tcp.port"}).out, QByteArray("5555\n"));
        const QList<QJsonObject> journal = m_phone->journal("tcpip");
        QCOMPARE(journal.size(), 1);
        QCOMPARE(journal.first().value("port").toInt(), 5555);

        // Back to "USB": Wi-Fi adb stops, the cable side comes back by itself.
        QCOMPARE(adb({"usb"}).out, QByteArray("restarting in USB mode\n"));
        QTRY_VERIFY_WITH_TIMEOUT(!host().listed(wifiSerial), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(host().listed(m_phone->serial()), 30000);
        QCOMPARE(shell({"getprop", "service.adb.tcp.port"}).out, QByteArray("\n"));
    }

    void rebootComesBackAndPowerOffStaysAway()
    {
        QCOMPARE(adb({"reboot"}).exitCode, 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("reboot").size(), 1, 5000);
        QCOMPARE(m_phone->journal("reboot").first().value("mode").toString(), QString());
        // adb reconnects by itself once the phone listens again.
        QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("boot").size(), 1, 5000);
        QTRY_VERIFY_WITH_TIMEOUT(host().listed(m_phone->serial()), 30000);

        QCOMPARE(adb({"reboot", "-p"}).exitCode, 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("reboot").size(), 2, 5000);
        QCOMPARE(m_phone->journal("reboot").last().value("mode").toString(), QString("-p"));
        QTRY_VERIFY_WITH_TIMEOUT(!host().listed(m_phone->serial()), 10000);
        QTest::qWait(500);
        QVERIFY(!accepts(m_phone->port()));
    }

    void serverEndsWithItsShell_data()
    {
        QTest::addColumn<bool>("byAdmin");
        QTest::newRow("the PC's adb process dies") << false;
        QTest::newRow("phonesim ctl kill-server") << true;
    }

    void serverEndsWithItsShell()
    {
        QFETCH(bool, byAdmin);
        const QString jar = writeFile(m_dir, "scrcpy-server", QByteArray("PK\x03\x04", 4) + QByteArray(1000, 's'));
        QCOMPARE(adb({"push", jar, "/data/local/tmp/scrcpy-server.jar"}).exitCode, 0);
        QTcpServer listener;
        QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
        QCOMPARE(adb({"reverse", "localabstract:scrcpy_00001234", QString("tcp:%1").arg(listener.serverPort())}).exitCode, 0);
        // The options as separate arguments here, as one shell line there: the phone reads both.
        const QStringList server = {"CLASSPATH=/data/local/tmp/scrcpy-server.jar", "app_process", "/",
                                    "com.genymobile.scrcpy.Server", "3.3.1", "video_bit_rate=2000000", "max_size=280",
                                    "max_fps=5", "scid=00001234", "control=false", "video=true", "audio=false"};
        std::unique_ptr<QProcess> adbShell(host().start(
            QStringList{"-s", m_phone->serial(), "shell"} + (byAdmin ? QStringList{server.join(' ')} : server)));
        QTRY_VERIFY_WITH_TIMEOUT(listener.hasPendingConnections(), 15000);
        std::unique_ptr<QTcpSocket> video(listener.nextPendingConnection());
        QTRY_VERIFY_WITH_TIMEOUT(video->bytesAvailable() > 0, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("server_start").size(), 1, 5000);

        if (byAdmin) {
            QCOMPARE(m_phone->ctl({"kill-server"}), 0);
            QTRY_COMPARE_WITH_TIMEOUT(adbShell->state(), QProcess::NotRunning, 10000);
            QCOMPARE(adbShell->exitCode(), 137);
            QVERIFY(adbShell->readAllStandardOutput().contains("[server]"));
        } else {
            // The phone's shell stream closes and the server with it.
            adbShell->kill();
            adbShell->waitForFinished(3000);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_phone->journal("server_stop").size(), 1, 10000);
        QCOMPARE(m_phone->journal("server_stop").first().value("reason").toString(), QString("killed"));
        QTRY_COMPARE_WITH_TIMEOUT(video->state(), QAbstractSocket::UnconnectedState, 10000);
        // pkill finds nothing left to kill.
        QCOMPARE(shell({"pkill", "-f", "com.genymobile.scrcpy.Server"}).exitCode, 1);
    }

    void ctlAnswers()
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
        QTRY_VERIFY_WITH_TIMEOUT(!host().listed(m_phone->serial()), 10000);
        PhoneSimProcess absent;
        QVERIFY(absent.ctl({"rotate"}, &output) != 0);
    }
};

QTEST_GUILESS_MAIN(TestPhoneSimAdb)
#include "tst_phonesimadb.moc"
