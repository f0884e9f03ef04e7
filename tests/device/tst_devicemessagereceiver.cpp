// The phone's clipboard messages on the control socket, and everything else that may arrive there.
#include "devicemessagereceiver.h"
#include "fakesocket.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QtTest>

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(QByteArray(text).replace(' ', ""));
}

QString clipboardText()
{
    return QGuiApplication::clipboard()->text(QClipboard::Clipboard);
}

} // namespace

class TestDeviceMessageReceiver : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void init();
    void chunks_data();
    void chunks();
    void splitMessageKeepsOnlyWhatArrived();
    void garbageNeverCrashes();
    void vanishedSocketIsIgnored();

private:
    static constexpr const char *Marker = "untouched";
};

void TestDeviceMessageReceiver::init()
{
    QGuiApplication::clipboard()->setText(Marker);
}

void TestDeviceMessageReceiver::chunks_data()
{
    QTest::addColumn<QByteArray>("chunk");
    QTest::addColumn<QString>("clipboard");

    QTest::newRow("utf-8") << QByteArray::fromHex("00000000") + QByteArray("\x06", 1) + QString("中文").toUtf8() << "中文";
    QTest::newRow("acknowledgement ignored") << hex("01 0000000000000001") << Marker;
    QTest::newRow("unknown type ignored") << hex("07 00000005 68656C6C6F") << Marker;
    QTest::newRow("empty text") << hex("00 00000000") << "";
    QTest::newRow("four bytes ignored") << hex("00 000000") << Marker;
    QTest::newRow("two messages, the first counts")
        << hex("00 00000003 6F6E65 00 00000003 74776F") << "one";
    QTest::newRow("text ends at its first NUL") << hex("00 00000005 6869006869") << "hi";
    QTest::newRow("length beyond the chunk") << hex("00 000003E8 616263") << "abc";
    QTest::newRow("length that overflows") << hex("00 FFFFFFFF 616263") << Marker;
    QTest::newRow("largest length that fits") << hex("00 7FFFFFFA 7A") << "z";
    QTest::newRow("invalid utf-8") << hex("00 00000003 FF FE 41") << QString::fromUtf8(hex("FFFE41"));
}

void TestDeviceMessageReceiver::chunks()
{
    QFETCH(QByteArray, chunk);
    QFETCH(QString, clipboard);
    FakeSocket socket;
    DeviceMessageReceiver receiver(nullptr, &socket);
    socket.feed(chunk);
    QCOMPARE(clipboardText(), clipboard);
    QCOMPARE(socket.bytesAvailable(), 0);
}

void TestDeviceMessageReceiver::splitMessageKeepsOnlyWhatArrived()
{
    FakeSocket socket;
    DeviceMessageReceiver receiver(nullptr, &socket);
    socket.feed(hex("00 00000005 68656C"));
    QCOMPARE(clipboardText(), QString("hel"));
    // The rest is not a message of its own.
    socket.feed(hex("6C6F"));
    QCOMPARE(clipboardText(), QString("hel"));
}

void TestDeviceMessageReceiver::garbageNeverCrashes()
{
    FakeSocket socket;
    DeviceMessageReceiver receiver(nullptr, &socket);
    QRandomGenerator random(77);
    for (int i = 0; i < 2000; ++i) {
        QByteArray chunk(int(random.bounded(40)), Qt::Uninitialized);
        for (char &c : chunk)
            c = char(random.bounded(256));
        // Half the chunks look like clipboard messages, with lengths of every size.
        if (i % 2 && !chunk.isEmpty())
            chunk[0] = 0;
        QGuiApplication::clipboard()->setText(Marker);
        socket.feed(chunk);
        const bool clipboardMessage = chunk.size() >= 5 && chunk.at(0) == 0;
        if (!clipboardMessage)
            QCOMPARE(clipboardText(), QString(Marker));
    }
}

void TestDeviceMessageReceiver::vanishedSocketIsIgnored()
{
    auto *socket = new FakeSocket;
    DeviceMessageReceiver receiver(nullptr, socket);
    delete socket;
    receiver.handleIncomingData();
    QCOMPARE(clipboardText(), QString(Marker));
}

QTEST_MAIN(TestDeviceMessageReceiver)
#include "tst_devicemessagereceiver.moc"
