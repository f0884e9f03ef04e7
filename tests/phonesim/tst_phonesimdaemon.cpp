// The adb daemon in this process, driven over raw sockets as a minimal host would, and through the
// real adb for a phone-to-PC tunnel that finds nobody.
#include "adbdaemon.h"
#include "adbmessage.h"
#include "adbrunner.h"
#include "loopbacklease.h"
#include "phone.h"
#include "phonechannel.h"
#include "phonesimprocess.h"

#include <QPointer>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {
constexpr quint32 HostMaxPayload = 4096;

// A host's end of one connection: raw messages in and out.
struct Host
{
    QTcpSocket socket;
    QByteArray buffer;
    AdbMessage reply;

    void send(quint32 command, quint32 arg0, quint32 arg1, const QByteArray &data = {})
    {
        socket.write(AdbMessage::encode(command, arg0, arg1, data));
    }

    // The next message from the phone, into `reply`; false if none came or the connection ended.
    bool read()
    {
        auto result = AdbMessage::ParseResult::Incomplete;
        (void)QTest::qWaitFor([&] {
            buffer += socket.readAll();
            result = AdbMessage::parse(buffer, 16 * 1024 * 1024, &reply);
            return result != AdbMessage::ParseResult::Incomplete || socket.state() != QAbstractSocket::ConnectedState;
        }, 5000);
        return result == AdbMessage::ParseResult::Complete;
    }

    bool connect(quint16 port)
    {
        socket.connectToHost(QHostAddress::LocalHost, port);
        if (!socket.waitForConnected(3000))
            return false;
        send(AdbMessage::Cnxn, 0x01000001, HostMaxPayload, "host::features=shell_v2");
        return read() && reply.command == AdbMessage::Cnxn;
    }
};
} // namespace

class TestPhoneSimDaemon : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const LoopbackLease m_adbServerPort = LoopbackLease::adbServerPort();
    std::unique_ptr<Phone> m_phone;
    std::unique_ptr<AdbDaemon> m_daemon;
    quint16 m_port = 0;

private slots:
    void init()
    {
        PhoneProfile profile;
        m_port = PhoneSimProcess::freePort();
        profile.serial = QString("127.0.0.1:%1").arg(m_port);
        profile.model = "Redmi Note 9";
        profile.androidVersion = "11";
        profile.screenSize = QSize(1080, 2340);
        profile.wifiAddress = "127.0.0.99";
        profile.dataDir = m_dir.path() + "/" + QTest::currentTestFunction();
        m_phone = std::make_unique<Phone>(profile);
        m_daemon = std::make_unique<AdbDaemon>(m_phone.get(), m_port);
        QString error;
        QVERIFY2(m_daemon->start(&error), qPrintable(error));
    }

    void cleanup()
    {
        m_daemon.reset();
        m_phone.reset();
    }

    void oneWriteInFlightPerStream()
    {
        Host host;
        QVERIFY(host.connect(m_port));
        host.send(AdbMessage::Open, 5, 0, QByteArray("tcp:7", 6));
        QVERIFY(host.read());
        QCOMPARE(host.reply.command, quint32(AdbMessage::Okay));
        const quint32 phoneId = host.reply.arg0;

        // Three full chunks into the echo service, then a second stream whose OKAY comes after
        // everything the chunks made the phone send.
        QByteArray sent;
        for (int i = 0; i < 3; ++i) {
            sent += QByteArray(int(HostMaxPayload), char('a' + i));
            host.send(AdbMessage::Wrte, 5, phoneId, sent.right(HostMaxPayload));
        }
        host.send(AdbMessage::Open, 6, 0, QByteArray("tcp:7", 6));
        QByteArray echoed;
        int okays = 0;
        int writes = 0;
        while (host.read() && host.reply.arg1 != 6) {
            okays += host.reply.command == AdbMessage::Okay;
            writes += host.reply.command == AdbMessage::Wrte;
            echoed += host.reply.data;
        }
        QCOMPARE(host.reply.arg1, quint32(6));
        // Each chunk is acknowledged, but without our OKAY only one echo is on its way.
        QCOMPARE(okays, 3);
        QCOMPARE(writes, 1);
        while (echoed.size() < sent.size()) {
            host.send(AdbMessage::Okay, 5, phoneId);
            QVERIFY(host.read());
            QCOMPARE(host.reply.command, quint32(AdbMessage::Wrte));
            QVERIFY(host.reply.data.size() <= int(HostMaxPayload));
            echoed += host.reply.data;
        }
        QVERIFY(echoed == sent);
    }

    void unknownServiceIsRefused()
    {
        Host host;
        QVERIFY(host.connect(m_port));
        host.send(AdbMessage::Open, 9, 0, QByteArray("jdwp:1234", 10));
        QVERIFY(host.read());
        QCOMPARE(host.reply.command, quint32(AdbMessage::Clse));
        QCOMPARE(host.reply.arg0, quint32(0));
        QCOMPARE(host.reply.arg1, quint32(9));
    }

    // Tunnels that open carry every mirroring session in tests/device; this is the one that
    // does not.
    void reverseToAClosedPortClosesWithoutOpening()
    {
        if (!AdbRunner::available())
            QSKIP("adb is not installed");
        const AdbRunner adb(m_adbServerPort.value());
        const QString serial = m_phone->profile().serial;
        const auto cleanup = qScopeGuard([&adb] { adb.killServer(); });
        QVERIFY(adb.run({"connect", serial}).out.contains("connected to"));
        QTRY_VERIFY_WITH_TIMEOUT(adb.listed(serial), 10000);
        QVERIFY(m_phone->openReverse("gone") == nullptr); // no tunnel yet

        QCOMPARE(adb.run({"-s", serial, "reverse", "localabstract:gone", QString("tcp:%1").arg(PhoneSimProcess::freePort())}).exitCode, 0);
        QPointer<PhoneChannel> refused = m_phone->openReverse("gone");
        QVERIFY(refused);
        QSignalSpy opened(refused.data(), &PhoneChannel::opened);
        QSignalSpy closed(refused.data(), &PhoneChannel::closed);
        QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 10000);
        QCOMPARE(opened.count(), 0);
    }
};

QTEST_GUILESS_MAIN(TestPhoneSimDaemon)
#include "tst_phonesimdaemon.moc"
