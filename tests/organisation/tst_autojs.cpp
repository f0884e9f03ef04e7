// The AutoJS bridge against a stand-in adb and a stand-in AutoJS server on the forwarded port.
#include "adbclient.h"
#include "autojs.h"
#include "autojsprotocol.h"
#include "device.h"
#include "devicegroup.h"
#include "fakeadb.h"

#include <QJsonDocument>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

namespace {

struct Command
{
    QByteArray header;
    QJsonObject message;
};

// Reads the PC's framing from the bytes alone: 16 ASCII header bytes, then the JSON body.
QList<Command> readCommands(QByteArray bytes)
{
    QList<Command> commands;
    while (bytes.size() >= 16) {
        const QByteArray header = bytes.left(16);
        bool ok = false;
        const int length = QByteArray(header.constData(), 14).trimmed().toInt(&ok);
        if (!ok || bytes.size() < 16 + length)
            break;
        commands << Command{header, QJsonDocument::fromJson(bytes.mid(16, length)).object()};
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

} // namespace

class TestAutojs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void headerCarriesTheBodyLength();
    void replyFraming_data();
    void replyFraming();
    void runSendsTheScriptAndStopSendsStopAll();
    void failuresReport_data();
    void failuresReport();
    void stopWithoutRunStillClearsTheFlag();
    void runDoesNotWaitForTheConnection();
    void phoneMessages();

private:
    // A device with a bridge whose forwarded port is served by m_server.
    void startServer(Device &device);
    QTcpSocket *waitForPeer();
    QByteArray readFromPeer(QTcpSocket *peer, int commands);
    QString script(const QString &name, const QByteArray &text = {});

    FakeAdb m_adb;
    QTemporaryDir m_dir;
    std::unique_ptr<QTcpServer> m_server;
};

void TestAutojs::initTestCase()
{
    AdbClient::setProgram(m_adb.program());
}

void TestAutojs::init()
{
    m_adb.clear();
    m_server.reset();
    Autojs::setConnectTimeout(30000);
}

void TestAutojs::startServer(Device &device)
{
    m_server = std::make_unique<QTcpServer>();
    QVERIFY(m_server->listen(QHostAddress::LocalHost, device.autojs()->localPort()));
}

QTcpSocket *TestAutojs::waitForPeer()
{
    // The bridge connects once its adb forward has finished, which needs the event loop.
    if (!QTest::qWaitFor([this] { return m_server->hasPendingConnections(); }, 5000))
        return nullptr;
    return m_server->nextPendingConnection();
}

QByteArray TestAutojs::readFromPeer(QTcpSocket *peer, int commands)
{
    QByteArray bytes;
    for (int i = 0; i < 200 && readCommands(bytes).size() < commands; ++i) {
        QTest::qWait(10);
        bytes += peer->readAll();
    }
    return bytes;
}

QString TestAutojs::script(const QString &name, const QByteArray &text)
{
    QFile file(m_dir.filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() ? file.fileName() : QString();
}

void TestAutojs::headerCarriesTheBodyLength()
{
    // Find a script length that makes the body exactly 1234 bytes.
    QByteArray bytes;
    for (int k = 0; k < 1234; ++k) {
        bytes = AutojsProtocol::encodeCommand(4321, {{"command", "run"}, {"script", QString(k, 'x')}});
        if (bytes.size() - 16 == 1234)
            break;
    }
    QCOMPARE(bytes.size(), 16 + 1234);
    QCOMPARE(bytes.left(16), QByteArray("1234\0\0\0\0\0\0\0\0\0\0" "1\0", 16));
    const QJsonObject body = QJsonDocument::fromJson(bytes.mid(16)).object();
    QCOMPARE(body.value("id").toInt(), 4321);
    QCOMPARE(body.value("type").toString(), QString("command"));
    QCOMPARE(body.value("data").toObject().value("command").toString(), QString("run"));
    // Compact JSON: no line breaks in the body.
    QVERIFY(!bytes.mid(16).contains('\n'));
}

void TestAutojs::replyFraming_data()
{
    QTest::addColumn<QByteArray>("buffer");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("left");
    const QByteArray hello = reply(1, R"({"type":"hello"})");
    const int message = int(AutojsProtocol::Take::Message);
    const int incomplete = int(AutojsProtocol::Take::Incomplete);
    QTest::newRow("whole") << hello << message << QByteArray(R"({"type":"hello"})") << 0;
    QTest::newRow("header cut") << hello.left(7) << incomplete << QByteArray() << 7;
    QTest::newRow("body one short") << hello.chopped(1) << incomplete << QByteArray() << int(hello.size() - 1);
    QTest::newRow("two at once") << hello + reply(2, "xy") << message << QByteArray(R"({"type":"hello"})") << 10;
    QTest::newRow("empty body") << reply(1, {}) << message << QByteArray() << 0;
    QTest::newRow("oversized length") << QByteArray::fromHex("FFFFFFFF00000001") + "abc"
                                      << int(AutojsProtocol::Take::Garbage) << QByteArray() << 11;
}

void TestAutojs::replyFraming()
{
    QFETCH(QByteArray, buffer);
    QFETCH(int, outcome);
    QFETCH(QByteArray, body);
    QFETCH(int, left);
    quint32 type = 0;
    QByteArray taken;
    QCOMPARE(int(AutojsProtocol::takeReply(buffer, &type, &taken)), outcome);
    QCOMPARE(taken, body);
    QCOMPARE(buffer.size(), left);
}

void TestAutojs::runSendsTheScriptAndStopSendsStopAll()
{
    Device device(nullptr, nullptr, "S1");
    startServer(device);
    const QByteArray text = "// 农场\nauto.waitFor();\nclick(100, 200);\n";
    const QString path = script("farm.task.js", text);

    QSignalSpy messages(&device, &Device::deviceMessage);
    QSignalSpy running(&device, &Device::isRunningAutojsChanged);
    device.runAutojs(path);
    QTcpSocket *peer = waitForPeer();
    QVERIFY(peer);
    QByteArray bytes = readFromPeer(peer, 1);
    QList<Command> commands = readCommands(bytes);
    QCOMPARE(commands.size(), 1);

    const quint16 port = device.autojs()->localPort();
    QCOMPARE(m_adb.calls().value(0),
             (QStringList{"-s", "S1", "forward", QString("tcp:%1").arg(port), "tcp:7347"}));
    QCOMPARE(commands[0].header.at(14), '1');
    const QJsonObject &message = commands[0].message;
    QCOMPARE(message.value("id").toInt(), int(port));
    QCOMPARE(message.value("type").toString(), QString("command"));
    const QJsonObject data = message.value("data").toObject();
    QCOMPARE(data.value("command").toString(), QString("run"));
    QCOMPARE(data.value("id").toInt(), int(port));
    QCOMPARE(data.value("name").toString(), QString("farm"));
    QCOMPARE(data.value("script").toString().toUtf8(), text);

    QVERIFY(device.autojs()->isRunning());
    QCOMPARE(running.count(), 1);
    QCOMPARE(messages.count(), 1);
    QCOMPARE(messages[0], (QVariantList{"AutoJS script started", "info", 2000}));

    QSignalSpy status(device.autojs(), &Autojs::runningStatusChanged);
    device.stopAutojs();
    QVERIFY(!device.autojs()->isRunning());
    QCOMPARE(status.count(), 1);
    commands = readCommands(bytes + readFromPeer(peer, 1));
    QCOMPARE(commands.size(), 2);
    QCOMPARE(commands[1].message.value("data").toObject(), (QJsonObject{{"command", "stopAll"}}));
    QCOMPARE(commands[1].message.value("type").toString(), QString("command"));
}

void TestAutojs::failuresReport_data()
{
    QTest::addColumn<bool>("forwardFails");
    QTest::addColumn<bool>("listening");
    QTest::addColumn<bool>("scriptExists");
    QTest::addColumn<QString>("message");
    QTest::newRow("forward fails") << true << true << true << "Failed to connect to AutoJS server";
    QTest::newRow("nothing listens") << false << false << true << "Failed to connect to AutoJS server";
    QTest::newRow("missing script") << false << true << false << "Failed to open AutoJS script file";
}

void TestAutojs::failuresReport()
{
    QFETCH(bool, forwardFails);
    QFETCH(bool, listening);
    QFETCH(bool, scriptExists);
    QFETCH(QString, message);
    if (forwardFails)
        m_adb.addRule("-s S1 forward *", 1, {}, "error: device offline\\n");
    Device device(nullptr, nullptr, "S1");
    if (listening)
        startServer(device);
    QSignalSpy messages(&device, &Device::deviceMessage);
    QSignalSpy running(&device, &Device::isRunningAutojsChanged);
    device.runAutojs(scriptExists ? script("a.js") : m_dir.filePath("missing.js"));
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 1, 5000);
    QCOMPARE(messages[0], (QVariantList{message, "error", 5000}));
    QTest::qWait(50);
    QCOMPARE(messages.count(), 1);
    QCOMPARE(running.count(), 0);
    QVERIFY(!device.autojs()->isRunning());
    if (forwardFails)
        QVERIFY(!m_server->hasPendingConnections());
}

void TestAutojs::stopWithoutRunStillClearsTheFlag()
{
    Device device(nullptr, nullptr, "S1");
    QSignalSpy running(&device, &Device::isRunningAutojsChanged);
    device.stopAutojs();
    QCOMPARE(running.count(), 1);
    QVERIFY(!device.autojs()->isRunning());
    QVERIFY(m_adb.calls().isEmpty());
}

void TestAutojs::runDoesNotWaitForTheConnection()
{
    Device device(nullptr, nullptr, "S1");
    startServer(device);
    const QString path = script("b.js");
    QSignalSpy messages(&device, &Device::deviceMessage);
    device.runAutojs(path);
    // run() has returned before the connection could be made: the outcome follows from the event loop.
    QCOMPARE(messages.count(), 0);
    QVERIFY(!device.autojs()->isRunning());
    QTRY_VERIFY_WITH_TIMEOUT(device.autojs()->isRunning(), 5000);

    // A second run forwards and connects again.
    device.runAutojs(path);
    QTRY_COMPARE_WITH_TIMEOUT(messages.count(), 2, 5000);
    QCOMPARE(m_adb.calls().size(), 2);
}

void TestAutojs::phoneMessages()
{
    Device device(nullptr, nullptr, "S1");
    startServer(device);
    device.runAutojs(script("c.js"));
    QTcpSocket *peer = waitForPeer();
    QVERIFY(peer);
    QTRY_VERIFY(device.autojs()->isRunning());
    QSignalSpy received(device.autojs(), &Autojs::messageReceived);
    const auto send = [peer](const QByteArray &bytes) {
        peer->write(bytes);
        peer->flush();
        QTest::qWait(100);
    };

    // Split over two reads: handled once the second part is there.
    const QByteArray hello = reply(1, R"({"type":"hello","data":{"app_version":"4.1.1"}})");
    send(hello.left(5));
    QCOMPARE(received.count(), 0);
    send(hello.mid(5));
    QTRY_COMPARE_WITH_TIMEOUT(received.count(), 1, 5000);
    QCOMPARE(received[0][0].toJsonObject().value("type").toString(), QString("hello"));

    // Other types, broken JSON and JSON that is not an object reach nobody.
    send(reply(2, "binary"));
    send(reply(1, "{not json"));
    send(reply(1, "[1,2]"));
    QCOMPARE(received.count(), 1);

    // An absurd length is dropped, and the next message is read again.
    send(QByteArray::fromHex("7FFFFFFF00000001") + "garbage");
    send(reply(1, R"({"type":"log","data":{"log":"x"}})"));
    QTRY_COMPARE_WITH_TIMEOUT(received.count(), 2, 5000);
    QCOMPARE(received[1][0].toJsonObject().value("type").toString(), QString("log"));
    QVERIFY(device.autojs()->isRunning());

    // The phone going away changes nothing either.
    peer->close();
    QTest::qWait(100);
    QVERIFY(device.autojs()->isRunning());
}

QTEST_GUILESS_MAIN(TestAutojs)
#include "tst_autojs.moc"
