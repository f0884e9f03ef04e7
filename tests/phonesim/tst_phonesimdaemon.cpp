// The adb daemon in this process, driven over raw sockets as a hostile or minimal host would,
// and through the real adb for the phone-to-PC tunnel hook.
#include "adbdaemon.h"
#include "adbmessage.h"
#include "adbrunner.h"
#include "loopbacklease.h"
#include "phone.h"
#include "phonechannel.h"
#include "phonesimprocess.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <memory>

namespace {
constexpr quint32 HostMaxPayload = 4096;
}

class TestPhoneSimDaemon : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const LoopbackLease m_adbServerPort = LoopbackLease::adbServerPort();
    std::unique_ptr<Phone> m_phone;
    std::unique_ptr<AdbDaemon> m_daemon;
    quint16 m_port = 0;

    // Reads messages from a raw socket until one arrives or the time runs out.
    bool readMessage(QTcpSocket &socket, QByteArray &buffer, AdbMessage *message, int timeoutMs = 5000)
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < timeoutMs) {
            buffer += socket.readAll();
            const auto result = AdbMessage::parse(buffer, 16 * 1024 * 1024, message);
            if (result == AdbMessage::ParseResult::Complete)
                return true;
            if (result == AdbMessage::ParseResult::Malformed || socket.state() != QAbstractSocket::ConnectedState)
                return false;
            QTest::qWait(5);
        }
        return false;
    }

    bool handshake(QTcpSocket &socket, QByteArray &buffer, AdbMessage *reply)
    {
        socket.connectToHost(QHostAddress::LocalHost, m_port);
        if (!socket.waitForConnected(3000))
            return false;
        socket.write(AdbMessage::encode(AdbMessage::Cnxn, 0x01000001, HostMaxPayload, "host::features=shell_v2"));
        return readMessage(socket, buffer, reply) && reply->command == AdbMessage::Cnxn;
    }

private slots:
    void init()
    {
        PhoneProfile profile;
        m_port = PhoneSimProcess::freePort();
        profile.serial = QString("127.0.0.1:%1").arg(m_port);
        profile.model = "Redmi Note 9";
        profile.manufacturer = "Xiaomi";
        profile.product = "merlin";
        profile.device = "merlin";
        profile.androidVersion = "11";
        profile.sdk = 30;
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
        if (QByteArray(QTest::currentTestFunction()).startsWith("reverse"))
            AdbRunner(m_adbServerPort.value()).killServer();
        m_daemon.reset();
        m_phone.reset();
    }

    void malformedInputDropsOnlyThatConnection_data()
    {
        QTest::addColumn<bool>("afterHandshake");
        QTest::addColumn<QByteArray>("bytes");
        QByteArray badMagic = AdbMessage::encode(AdbMessage::Open, 1, 0);
        badMagic[20] = char(badMagic[20] ^ 1);
        QTest::newRow("bad magic") << true << badMagic;
        // Far beyond what the phone offered in its CNXN: dropped without waiting for the data.
        QByteArray huge = AdbMessage::encode(AdbMessage::Wrte, 1, 1);
        qToLittleEndian<quint32>(64 * 1024 * 1024, huge.data() + 12);
        QTest::newRow("huge length") << true << huge;
        QTest::newRow("open before connect") << false << AdbMessage::encode(AdbMessage::Open, 1, 0, "shell:ls");
    }

    void malformedInputDropsOnlyThatConnection()
    {
        QFETCH(bool, afterHandshake);
        QFETCH(QByteArray, bytes);
        QTcpSocket bystander;
        QByteArray bystanderBuffer;
        AdbMessage reply;
        QVERIFY(handshake(bystander, bystanderBuffer, &reply));

        QTcpSocket victim;
        QByteArray buffer;
        if (afterHandshake) {
            QVERIFY(handshake(victim, buffer, &reply));
        } else {
            victim.connectToHost(QHostAddress::LocalHost, m_port);
            QVERIFY(victim.waitForConnected(3000));
        }
        victim.write(bytes);
        QTRY_COMPARE_WITH_TIMEOUT(victim.state(), QAbstractSocket::UnconnectedState, 5000);

        // The connection that behaved still works, and a new one gets CNXN.
        QCOMPARE(bystander.state(), QAbstractSocket::ConnectedState);
        bystander.write(AdbMessage::encode(AdbMessage::Open, 7, 0, QByteArray("shell:echo alive", 17)));
        QVERIFY(readMessage(bystander, bystanderBuffer, &reply));
        QCOMPARE(reply.command, quint32(AdbMessage::Okay));
        QVERIFY(readMessage(bystander, bystanderBuffer, &reply));
        QCOMPARE(reply.command, quint32(AdbMessage::Wrte));
        QCOMPARE(reply.data, QByteArray("alive\n"));
        QTcpSocket newcomer;
        QByteArray newcomerBuffer;
        QVERIFY(handshake(newcomer, newcomerBuffer, &reply));
    }

    void oneWriteInFlightPerStream()
    {
        QTcpSocket socket;
        QByteArray buffer;
        AdbMessage reply;
        QVERIFY(handshake(socket, buffer, &reply));
        socket.write(AdbMessage::encode(AdbMessage::Open, 5, 0, QByteArray("tcp:7", 6)));
        QVERIFY(readMessage(socket, buffer, &reply));
        QCOMPARE(reply.command, quint32(AdbMessage::Okay));
        const quint32 phoneId = reply.arg0;

        // Three full chunks into the echo service; the phone acknowledges each one.
        QByteArray sent;
        for (int i = 0; i < 3; ++i) {
            const QByteArray chunk(int(HostMaxPayload), char('a' + i));
            sent += chunk;
            socket.write(AdbMessage::encode(AdbMessage::Wrte, 5, phoneId, chunk));
        }
        QByteArray echoed;
        int okays = 0;
        int writes = 0;
        // Without our OKAY the phone must not send a second WRTE.
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 500) {
            if (!readMessage(socket, buffer, &reply, 100))
                continue;
            if (reply.command == AdbMessage::Okay)
                ++okays;
            if (reply.command == AdbMessage::Wrte) {
                ++writes;
                QVERIFY(reply.data.size() <= int(HostMaxPayload));
                echoed += reply.data;
            }
        }
        QCOMPARE(okays, 3);
        QCOMPARE(writes, 1);
        while (echoed.size() < sent.size()) {
            socket.write(AdbMessage::encode(AdbMessage::Okay, 5, phoneId));
            QVERIFY(readMessage(socket, buffer, &reply));
            QCOMPARE(reply.command, quint32(AdbMessage::Wrte));
            echoed += reply.data;
        }
        QCOMPARE(echoed, sent);
    }

    void unknownServiceIsRefused()
    {
        QTcpSocket socket;
        QByteArray buffer;
        AdbMessage reply;
        QVERIFY(handshake(socket, buffer, &reply));
        socket.write(AdbMessage::encode(AdbMessage::Open, 9, 0, QByteArray("jdwp:1234", 10)));
        QVERIFY(readMessage(socket, buffer, &reply));
        QCOMPARE(reply.command, quint32(AdbMessage::Clse));
        QCOMPARE(reply.arg0, quint32(0));
        QCOMPARE(reply.arg1, quint32(9));
    }

    void reverseHookCarriesBytesBothWays()
    {
        if (!AdbRunner::available())
            QSKIP("adb is not installed");
        const AdbRunner adb(m_adbServerPort.value());
        const QString serial = QString("127.0.0.1:%1").arg(m_port);
        QVERIFY(adb.run({"connect", serial}).out.contains("connected to"));
        QTRY_VERIFY_WITH_TIMEOUT(adb.listed(serial), 10000);
        QVERIFY(m_phone->openReverse("scrcpy_0000abcd") == nullptr); // no tunnel yet

        // A tunnel to a port nobody listens on closes without ever opening.
        const quint16 nobody = PhoneSimProcess::freePort();
        QCOMPARE(adb.run({"-s", serial, "reverse", "localabstract:gone", QString("tcp:%1").arg(nobody)}).exitCode, 0);
        QPointer<PhoneChannel> refused = m_phone->openReverse("gone");
        QVERIFY(refused);
        QSignalSpy refusedOpened(refused.data(), &PhoneChannel::opened);
        QSignalSpy refusedClosed(refused.data(), &PhoneChannel::closed);
        QTRY_COMPARE_WITH_TIMEOUT(refusedClosed.count(), 1, 10000);
        QCOMPARE(refusedOpened.count(), 0);

        QTcpServer pc;
        QVERIFY(pc.listen(QHostAddress::LocalHost, 0));
        QCOMPARE(adb.run({"-s", serial, "reverse", "localabstract:scrcpy_0000abcd", QString("tcp:%1").arg(pc.serverPort())})
                     .exitCode,
                 0);
        QPointer<PhoneChannel> channel = m_phone->openReverse("scrcpy_0000abcd");
        QVERIFY(channel);
        QSignalSpy opened(channel.data(), &PhoneChannel::opened);
        QSignalSpy closed(channel.data(), &PhoneChannel::closed);
        QByteArray fromPc;
        connect(channel.data(), &PhoneChannel::dataReceived, this, [&fromPc](const QByteArray &data) { fromPc += data; });
        QTRY_VERIFY_WITH_TIMEOUT(pc.hasPendingConnections(), 10000);
        std::unique_ptr<QTcpSocket> socket(pc.nextPendingConnection());
        QTRY_COMPARE_WITH_TIMEOUT(opened.count(), 1, 10000);
        QVERIFY(channel->isOpen());

        // Larger than one adb payload, so flow control has to carry it in pieces.
        QByteArray toPc(3 * 1024 * 1024 + 5, '\0');
        for (int i = 0; i < toPc.size(); ++i)
            toPc[i] = char((i * 31) & 0xff);
        channel->write(toPc);
        QByteArray received;
        QTRY_VERIFY_WITH_TIMEOUT((received += socket->readAll()).size() >= toPc.size(), 20000);
        QCOMPARE(received, toPc);
        QTRY_COMPARE_WITH_TIMEOUT(channel->pendingBytes(), qint64(0), 5000);

        socket->write("control message from the PC");
        QTRY_COMPARE_WITH_TIMEOUT(fromPc, QByteArray("control message from the PC"), 10000);
        channel->close();
        QTRY_COMPARE_WITH_TIMEOUT(socket->state(), QAbstractSocket::UnconnectedState, 10000);
        QCOMPARE(closed.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestPhoneSimDaemon)
#include "tst_phonesimdaemon.moc"
