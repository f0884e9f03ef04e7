// The AutoJS bridge against a stand-in adb and AutoJS server. A simulated phone runs and stops scripts
// in tst_devicecontrol; replies are only framed (nothing acts on them): replyFraming and the fuzzer.
#include "adbclient.h"
#include "deviceactions.h"
#include "adbworkpool.h"
#include "autojs.h"
#include "autojsprotocol.h"
#include "device.h"
#include "fakeadb.h"
#include "testfiles.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

namespace {
// Reads the PC's framing from the bytes alone: 16 ASCII header bytes, then the JSON body.
QList<QJsonObject> readCommands(QByteArray bytes)
{
    QList<QJsonObject> commands;
    while (bytes.size() >= 16) {
        bool ok = false;
        const int length = QByteArray(bytes.constData(), 14).trimmed().toInt(&ok);
        if (!ok || bytes.size() < 16 + length)
            break;
        commands << QJsonDocument::fromJson(bytes.mid(16, length)).object();
        bytes.remove(0, 16 + length);
    }
    return commands;
}

QByteArray reply(quint32 type, const QByteArray &body)
{
    QByteArray header(8, '\0');
    qToBigEndian<quint32>(quint32(body.size()), header.data());
    qToBigEndian<quint32>(type, header.data() + 4);
    return header + body;
}
}

class TestAutojs : public QObject
{
    Q_OBJECT

private:
    FakeAdb m_adb;
    QTemporaryDir m_dir;
    std::unique_ptr<QTcpServer> m_server;

    // Serves the device's forwarded port, as the AutoJS app would.
    void serve(Device &device)
    {
        m_server = std::make_unique<QTcpServer>();
        QVERIFY(m_server->listen(QHostAddress::LocalHost, device.actions()->autojs()->localPort()));
    }

    QTcpSocket *waitForPeer()
    {
        // The bridge connects once its adb forward has finished, which needs the event loop.
        return QTest::qWaitFor([this] { return m_server->hasPendingConnections(); }, 5000) ? m_server->nextPendingConnection()
                                                                                            : nullptr;
    }

    QString script(const QString &name, const QByteArray &text = "toast('hi');")
    {
        return TestFiles::write(m_dir.filePath(name), text) ? m_dir.filePath(name) : QString();
    }

private slots:
    void initTestCase() { AdbClient::setProgram(m_adb.program()); }

    void init()
    {
        m_adb.clear();
        m_server.reset();
    }

    void headerCarriesTheBodyLength()
    {
        // Find a script length that makes the body exactly 1234 bytes.
        QByteArray bytes;
        for (int k = 0; k < 1234 && bytes.size() != 16 + 1234; ++k)
            bytes = AutojsProtocol::encodeCommand(4321, {{"command", "run"}, {"script", QString(k, 'x')}});
        QCOMPARE(bytes.size(), 16 + 1234);
        QCOMPARE(bytes.left(16), QByteArray("1234\0\0\0\0\0\0\0\0\0\0" "1\0", 16));
        const QJsonObject body = QJsonDocument::fromJson(bytes.mid(16)).object();
        QCOMPARE(body.value("id").toInt(), 4321);
        QCOMPARE(body.value("type").toString(), QString("command"));
        QCOMPARE(body.value("data").toObject().value("command").toString(), QString("run"));
        // Compact JSON: no line breaks in the body.
        QVERIFY(!bytes.mid(16).contains('\n'));
    }

    void replyFraming_data()
    {
        QTest::addColumn<QByteArray>("buffer");
        QTest::addColumn<AutojsProtocol::Take>("outcome");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("left");
        const QByteArray hello = reply(1, R"({"type":"hello"})");
        using T = AutojsProtocol::Take;
        QTest::newRow("whole") << hello << T::Message << QByteArray(R"({"type":"hello"})") << 0;
        QTest::newRow("header cut") << hello.left(7) << T::Incomplete << QByteArray() << 7;
        QTest::newRow("body one short") << hello.chopped(1) << T::Incomplete << QByteArray() << int(hello.size() - 1);
        QTest::newRow("two at once") << hello + reply(2, "xy") << T::Message << QByteArray(R"({"type":"hello"})") << 10;
        QTest::newRow("empty body") << reply(1, {}) << T::Message << QByteArray() << 0;
        QTest::newRow("oversized length") << QByteArray::fromHex("FFFFFFFF00000001") + "abc" << T::Garbage << QByteArray() << 11;
    }

    void replyFraming()
    {
        QFETCH(QByteArray, buffer);
        quint32 type = 0;
        QByteArray taken;
        QTEST(AutojsProtocol::takeReply(buffer, &type, &taken), "outcome");
        QTEST(taken, "body");
        QTEST(int(buffer.size()), "left");
    }

    void runConnectsInTheBackgroundAndCommandsCarryThePort()
    {
        Device device(nullptr, "S1");
        serve(device);
        QSignalSpy messages(&device, &Device::deviceMessage);
        device.actions()->runAutojs(script("farm.task.js"));
        // run() returns before the forward and the connection: the outcome follows from the event loop.
        QCOMPARE(messages.count(), 0);
        QVERIFY(!device.actions()->autojs()->isRunning());
        QTcpSocket *peer = waitForPeer();
        QVERIFY(peer);
        QTRY_VERIFY(device.actions()->autojs()->isRunning());
        device.actions()->stopAutojs();
        QByteArray bytes;
        QVERIFY(QTest::qWaitFor([&] { return readCommands(bytes += peer->readAll()).size() == 2; }, 5000));

        const int port = device.actions()->autojs()->localPort();
        QCOMPARE(m_adb.calls().value(0), (QStringList{"-s", "S1", "forward", QString("tcp:%1").arg(port), "tcp:7347"}));
        const QList<QJsonObject> commands = readCommands(bytes);
        QCOMPARE(commands[0].value("id").toInt(), port);
        QCOMPARE(commands[0]["data"]["id"].toInt(), port);
        QCOMPARE(commands[0]["data"]["name"].toString(), QString("farm"));
        QCOMPARE(commands[1].value("data").toObject(), (QJsonObject{{"command", "stopAll"}}));

        // A second run forwards and connects again.
        device.actions()->runAutojs(script("farm.task.js"));
        QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 5000);
        QCOMPARE(m_adb.calls().size(), 2);
    }

    void failuresReport_data()
    {
        QTest::addColumn<bool>("forwardFails");
        QTest::addColumn<bool>("listening");
        QTest::addColumn<bool>("scriptExists");
        QTest::addColumn<QString>("message");
        QTest::newRow("forward fails") << true << true << true << "Failed to connect to AutoJS server";
        QTest::newRow("nothing listens") << false << false << true << "Failed to connect to AutoJS server";
        QTest::newRow("missing script") << false << true << false << "Failed to open AutoJS script file";
    }

    void failuresReport()
    {
        QFETCH(bool, forwardFails);
        QFETCH(bool, listening);
        QFETCH(bool, scriptExists);
        QFETCH(QString, message);
        if (forwardFails)
            m_adb.addRule("-s S1 forward *", 1, {}, "error: device offline\\n");
        Device device(nullptr, "S1");
        if (listening)
            serve(device);
        QSignalSpy messages(&device, &Device::deviceMessage);
        QSignalSpy running(device.actions()->autojs(), &Autojs::runningStatusChanged);
        device.actions()->runAutojs(scriptExists ? script("a.js") : m_dir.filePath("missing.js"));
        QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 1, 5000);
        QCOMPARE(messages[0], (QVariantList{message, QVariant::fromValue(MessageKind::Error), 5000}));
        QCOMPARE(running.count(), 0);
        QVERIFY(!device.actions()->autojs()->isRunning());
        // Nothing is left that could report again: no connect time-out is pending.
        QVERIFY(!device.actions()->autojs()->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly)->isActive());
        if (forwardFails)
            QVERIFY(!m_server->hasPendingConnections());
        // Stop still clears the flag, and asks nothing of adb.
        const int calls = m_adb.calls().size();
        device.actions()->stopAutojs();
        QCOMPARE(running.count(), 1);
        QCOMPARE(m_adb.calls().size(), calls);
    }

    void cancelledRunStopsItsForward()
    {
        // A forward that would take ten seconds: the cancel kills it, and no answer or connection follows.
        m_adb.addRule("-s S1 forward *", 0, {}, {}, 10);
        Device device(nullptr, "S1");
        serve(device);
        QSignalSpy finished(device.actions()->autojs(), &Autojs::runFinished);
        device.actions()->runAutojs(script("a.js"));
        QTRY_COMPARE(AdbWorkPool::instance()->runningCount(), 1);
        device.actions()->autojs()->cancelRun();
        QTRY_COMPARE_WITH_TIMEOUT(AdbWorkPool::instance()->activeCount(), 0, 3000);
        QCOMPARE(finished.count(), 0);
        QVERIFY(!m_server->hasPendingConnections());
    }

    void repliesAreReassembledAndTheBridgeOutlivesThePhone()
    {
        Device device(nullptr, "S1");
        serve(device);
        device.actions()->runAutojs(script("c.js"));
        QTcpSocket *peer = waitForPeer();
        QVERIFY(peer);
        QTRY_VERIFY(device.actions()->autojs()->isRunning());
        QSignalSpy received(device.actions()->autojs(), &Autojs::messageReceived);
        const auto send = [peer](const QByteArray &bytes) {
            peer->write(bytes);
            QVERIFY(peer->waitForBytesWritten(5000));
        };
        // A reply split over two reads counts once, from both parts.
        const QByteArray hello = reply(1, R"({"type":"hello","data":{"app_version":"4.1.1"}})");
        send(hello.left(5));
        send(hello.mid(5));
        QTRY_COMPARE_WITH_TIMEOUT(received.count(), 1, 5000);
        QCOMPARE(received[0][0].toJsonObject().value("type").toString(), QString("hello"));
        // Other types, broken JSON and a non-object reach nobody, and the reply after them in the same
        // read still does. (An absurd length loses the framing: replyFraming covers it.)
        send(reply(2, "binary") + reply(1, "{not json") + reply(1, "[1,2]") + reply(1, R"({"type":"log","data":{"log":"x"}})"));
        QTRY_COMPARE_WITH_TIMEOUT(received.count(), 2, 5000);
        QCOMPARE(received[1][0].toJsonObject().value("type").toString(), QString("log"));
        // The phone hanging up leaves the bridge running.
        auto *socket = device.actions()->autojs()->findChild<QTcpSocket *>();
        peer->close();
        QTRY_COMPARE_WITH_TIMEOUT(socket->state(), QAbstractSocket::UnconnectedState, 5000);
        QVERIFY(device.actions()->autojs()->isRunning());
    }
};

QTEST_GUILESS_MAIN(TestAutojs)
#include "tst_autojs.moc"
