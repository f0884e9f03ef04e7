// The phone's clipboard messages on the control socket, and everything else that may arrive there.
#include "devicemessagereceiver.h"
#include "fakesocket.h"

#include <QClipboard>
#include <QGuiApplication>
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

constexpr const char *Marker = "untouched";

} // namespace

class TestDeviceMessageReceiver : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private slots:
    void init() { QGuiApplication::clipboard()->setText(Marker); }

    void chunks_data()
    {
        QTest::addColumn<QByteArray>("chunk");
        QTest::addColumn<QString>("clipboard");
        QTest::newRow("utf-8") << QByteArray::fromHex("00000000") + QByteArray("\x06", 1) + QString("中文").toUtf8() << "中文";
        QTest::newRow("acknowledgement ignored") << hex("01 0000000000000001") << Marker;
        QTest::newRow("unknown type ignored") << hex("07 00000005 68656C6C6F") << Marker;
        QTest::newRow("empty text") << hex("00 00000000") << "";
        QTest::newRow("four bytes ignored") << hex("00 000000") << Marker;
        QTest::newRow("two messages, the last stays") << hex("00 00000003 6F6E65 00 00000003 74776F") << "two";
        QTest::newRow("acknowledgement then text") << hex("01 0000000000000001 00 00000002 6F6B") << "ok";
        QTest::newRow("text ends at its first NUL") << hex("00 00000005 6869006869") << "hi";
        QTest::newRow("length beyond the chunk waits") << hex("00 000003E8 616263") << Marker;
        QTest::newRow("length past any text") << hex("00 FFFFFFFF 616263") << Marker;
        QTest::newRow("invalid utf-8") << hex("00 00000003 FF FE 41") << QString::fromUtf8(hex("FFFE41"));
    }

    void chunks()
    {
        QFETCH(QByteArray, chunk);
        QFETCH(QString, clipboard);
        FakeSocket socket;
        DeviceMessageReceiver receiver(nullptr, &socket);
        socket.feed(chunk);
        QCOMPARE(clipboardText(), clipboard);
        QCOMPARE(socket.bytesAvailable(), 0);
    }

    void splitMessagesAreReassembled()
    {
        const QByteArray stream = hex("01 0000000000000007 00 00000005 68656C6C6F");
        for (int cut = 1; cut < stream.size(); ++cut) {
            QGuiApplication::clipboard()->setText(Marker);
            FakeSocket socket;
            DeviceMessageReceiver receiver(nullptr, &socket);
            socket.feed(stream.left(cut));
            QCOMPARE(clipboardText(), QString(Marker));
            socket.feed(stream.mid(cut));
            QCOMPARE(clipboardText(), QString("hello"));
        }
        // After bytes that cannot be framed, the next message is read from its start.
        FakeSocket socket;
        DeviceMessageReceiver receiver(nullptr, &socket);
        socket.feed(hex("07 0102"));
        socket.feed(hex("00 00000002 6869"));
        QCOMPARE(clipboardText(), QString("hi"));
    }

    void vanishedSocketIsIgnored()
    {
        auto *socket = new FakeSocket;
        DeviceMessageReceiver receiver(nullptr, socket);
        delete socket;
        receiver.handleIncomingData();
        QCOMPARE(clipboardText(), QString(Marker));
    }
};

QTEST_MAIN(TestDeviceMessageReceiver)
#include "tst_devicemessagereceiver.moc"
