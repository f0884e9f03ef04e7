// The simulated phone as Debian's adb sees it: listing, shell, push, reverse tunnels, reboot and
// the farm script. What Korvel builds on these (sessions, Wi-Fi adb, installs, a phone that
// vanishes, a killed server) is proven through Korvel in tests/device, control and organisation.
#include "phonefixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {
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
    // Shared by the tests that leave the phone as they found it; the others start their own.
    PhoneSimProcess *m_phone = nullptr;
    QTemporaryDir m_dir;

    PhoneSimProcess *addPhone()
    {
        return m_fixture->addPhone(QSize(720, 1600), {"--model", "Galaxy S23 Ultra", "--manufacturer", "samsung", "--product",
                                                      "dm3qzhx", "--device", "dm3q", "--android", "13", "--reboot-delay", "100"});
    }
    const AdbRunner &host() const { return m_fixture->adb(); }
    AdbRunner::Result adb(const QStringList &args, const PhoneSimProcess *phone = nullptr) const
    {
        return host().run(QStringList{"-s", (phone ? phone : m_phone)->serial()} + args);
    }

private slots:
    void initTestCase()
    {
        if (!AdbRunner::available())
            QSKIP("adb is not installed");
        m_fixture = std::make_unique<PhoneFixture>();
        m_phone = addPhone();
        QVERIFY2(m_phone, qPrintable(m_fixture->error()));
    }

    void cleanupTestCase() { m_fixture.reset(); }

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
        QTest::newRow("serialno") << QStringList{"getprop", "ro.serialno"} << 0 << "^R5C[0-9A-Z]{8}\\n$" << "";
        QTest::newRow("fingerprint") << QStringList{"getprop", "ro.build.fingerprint"} << 0
                                     << "^samsung/dm3qzhx/dm3q:13/\\S+:user/release-keys\\n$" << "";
        QTest::newRow("unknown key") << QStringList{"getprop", "no.such.key"} << 0 << "^\\n$" << "";
        QTest::newRow("wm size") << QStringList{"wm", "size"} << 0 << "^Physical size: 720x1600\\n$" << "";
        QTest::newRow("ip addr wlan0") << QStringList{"ip addr show wlan0"} << 0 << "inet\\s+%W/8 " << "";
        QTest::newRow("ifconfig wlan0") << QStringList{"ifconfig wlan0"} << 0 << "inet\\s+addr:%W " << "";
        QTest::newRow("ip addr eth0") << QStringList{"ip addr show eth0"} << 1 << "^$" << "Device \"eth0\" does not exist.\n";
        QTest::newRow("sequence") << QStringList{"echo a && false; echo 'b c' || echo no"} << 0 << "^a\\nb c\\n$" << "";
        QTest::newRow("pwd") << QStringList{"pwd"} << 0 << "^/\\n$" << "";
    }

    void shellAnswersLikeAPhone()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, stdoutPattern);
        QFETCH(QString, errText);
        const AdbRunner::Result result = adb(QStringList{"shell"} + args);
        QVERIFY(result.finished);
        QCOMPARE(result.exitCode, exitCode);
        stdoutPattern.replace("%W", QRegularExpression::escape(m_phone->wifiAddress()));
        QVERIFY2(QRegularExpression(stdoutPattern).match(QString::fromUtf8(result.out)).hasMatch(), result.out.constData());
        QCOMPARE(QString::fromUtf8(result.err), errText);
        QCOMPARE(m_phone->journal("shell").last().value("command").toString(), args.join(' '));
    }

    void pushArrivesWhole()
    {
        // Many sync chunks, into a folder that the phone makes.
        QByteArray payload(5 * 1024 * 1024 + 123, '\0');
        QRandomGenerator(42).fillRange(reinterpret_cast<quint32 *>(payload.data()), payload.size() / 4);
        QFile local(m_dir.filePath("payload.bin"));
        QVERIFY(local.open(QIODevice::WriteOnly) && local.write(payload) == payload.size());
        local.close();
        QCOMPARE(adb({"push", local.fileName(), "/sdcard/Korvel/new/x.bin"}).exitCode, 0);
        QFile arrived(m_phone->sandboxPath("/sdcard/Korvel/new/x.bin"));
        QVERIFY(arrived.open(QIODevice::ReadOnly));
        QVERIFY(arrived.readAll() == payload);
        // What other tests read to see what arrived.
        const QJsonObject push = m_phone->journal("push").last();
        QCOMPARE(push.value("path").toString(), QString("/sdcard/Korvel/new/x.bin"));
        QCOMPARE(push.value("sha256").toString(),
                 QString(QCryptographicHash::hash(payload, QCryptographicHash::Sha256).toHex()));
    }

    void reverseListAndRemove()
    {
        // Each line names the connection, then the tunnel.
        auto list = [this] {
            QStringList tunnels;
            for (const QString &line : QString::fromUtf8(adb({"reverse", "--list"}).out).split('\n', Qt::SkipEmptyParts))
                tunnels << line.section(' ', 1);
            return tunnels;
        };
        QCOMPARE(adb({"reverse", "localabstract:scrcpy_0000abcd", "tcp:27183"}).exitCode, 0);
        QCOMPARE(adb({"reverse", "localabstract:other", "tcp:27184"}).exitCode, 0);
        QCOMPARE(list(), (QStringList{"localabstract:scrcpy_0000abcd tcp:27183", "localabstract:other tcp:27184"}));
        QCOMPARE(adb({"reverse", "--remove", "localabstract:scrcpy_0000abcd"}).exitCode, 0);
        QCOMPARE(list(), QStringList{"localabstract:other tcp:27184"});
        const AdbRunner::Result again = adb({"reverse", "--remove", "localabstract:scrcpy_0000abcd"});
        QVERIFY(again.exitCode != 0);
        QVERIFY2(again.err.contains("not found"), again.err.constData());
        QCOMPARE(adb({"reverse", "--remove-all"}).exitCode, 0);
        QVERIFY(list().isEmpty());
    }

    void rebootComesBackAndPowerOffStaysAway()
    {
        PhoneSimProcess *phone = addPhone();
        QVERIFY2(phone, qPrintable(m_fixture->error()));
        QCOMPARE(adb({"reboot"}, phone).exitCode, 0);
        QTRY_COMPARE_WITH_TIMEOUT(phone->journal("boot").size(), 1, 5000);
        QCOMPARE(phone->journal("reboot").first().value("mode").toString(), QString());
        // adb reconnects by itself once the phone listens again.
        QTRY_VERIFY_WITH_TIMEOUT(host().listed(phone->serial()), 30000);

        QCOMPARE(adb({"reboot", "-p"}, phone).exitCode, 0);
        QTRY_COMPARE_WITH_TIMEOUT(phone->journal("reboot").size(), 2, 5000);
        QCOMPARE(phone->journal("reboot").last().value("mode").toString(), QString("-p"));
        QTRY_VERIFY_WITH_TIMEOUT(!host().listed(phone->serial()), 10000);
        // A powered-off phone goes offline without scheduling a boot.
        QTRY_COMPARE_WITH_TIMEOUT(phone->journal("power_off").size(), 1, 5000);
        QCOMPARE(phone->journal("boot").size(), 1);
        QVERIFY(!accepts(phone->port()));
    }

    void phonefarmStartsVariedPhonesAndStopsThem()
    {
        // scripts/phonefarm as developers run it, on this program's adb server.
        QTemporaryDir farmDir;
        const quint16 base = PhoneSimProcess::freePort();
        const auto farm = [&](const QStringList &args, QString *output = nullptr) {
            QProcess process;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert("KORVEL_PHONEFARM_DIR", farmDir.path());
            environment.insert("KORVEL_PHONEFARM_BASE_PORT", QString::number(base));
            process.setProcessEnvironment(environment);
            process.start("bash", QStringList{qEnvironmentVariable("KORVEL_SOURCE_DIR") + "/scripts/phonefarm"} + args);
            const bool ok = process.waitForFinished(60000) && process.exitCode() == 0;
            if (output)
                *output = QString::fromUtf8(process.readAllStandardOutput());
            return ok;
        };
        const auto cleanup = qScopeGuard([&] { farm({"stop"}); });
        QString started;
        QVERIFY(farm({"start", "3"}, &started));
        const QStringList serials = started.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(serials, (QStringList{QString("127.0.0.1:%1").arg(base), QString("127.0.0.1:%1").arg(base + 1),
                                       QString("127.0.0.1:%1").arg(base + 2)}));
        QStringList sizes;
        for (const QString &serial : serials)
            sizes << QString::fromUtf8(host().run({"-s", serial, "shell", "wm", "size"}).out).trimmed();
        QCOMPARE(sizes, (QStringList{"Physical size: 1080x2400", "Physical size: 720x1600", "Physical size: 1080x2340"}));
        QCOMPARE(host().run({"-s", serials.at(1), "shell", "getprop", "dhcp.wlan0.ipaddress"}).out, QByteArray("127.0.0.11\n"));
        QVERIFY(QFile::exists(farmDir.filePath(QString("%1/journal.jsonl").arg(base))));

        QVERIFY(farm({"stop"}));
        for (const QString &serial : serials)
            QVERIFY(!host().run({"devices"}).out.contains(serial.toUtf8()));
        QVERIFY(QDir(farmDir.path()).entryList({"*.pid"}, QDir::Files).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestPhoneSimAdb)
#include "tst_phonesimadb.moc"
