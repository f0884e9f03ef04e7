// Control messages as bytes: exact vectors for every type and round trips through a reader
// written from the byte layouts.
#include "controlmsg.h"
#include "controlmsgencoder.h"
#include "controlwire.h"

#include <QRandomGenerator>
#include <QtTest>

Q_DECLARE_METATYPE(ControlMsg)

namespace {
QByteArray hex(const char *text)
{
    return QByteArray::fromHex(QByteArray(text).replace(' ', ""));
}

ControlPosition at(int x, int y, int w, int h)
{
    return ControlPosition{QPoint(x, y), QSize(w, h)};
}
}

class TestControlMsgEncoder : public QObject
{
    Q_OBJECT

private slots:
    void vectors_data();
    void vectors();
    void pressureIsFixedPoint_data();
    void pressureIsFixedPoint();
    void scrollIsNormalised_data();
    void scrollIsNormalised();
    void injectTextIsCutBeforeUtf8_data();
    void injectTextIsCutBeforeUtf8();
    void clipboardTextIsCutBeforeUtf8();
    void emptyClipboardTextLeavesTheRecordZeroed();
    void copiesShareTheirText();
    void randomMessagesRoundTrip();
};

void TestControlMsgEncoder::vectors_data()
{
    QTest::addColumn<ControlMsg>("msg");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("home down") << ControlMsg::injectKeycode(0, 3, 0, 0) << hex("00 00 00000003 00000000 00000000");
    QTest::newRow("home up") << ControlMsg::injectKeycode(1, 3, 0, 0) << hex("00 01 00000003 00000000 00000000");
    QTest::newRow("key with repeat and meta")
        << ControlMsg::injectKeycode(0, 31, 2, 0x1000) << hex("00 00 0000001F 00000002 00001000");
    QTest::newRow("negative key code") << ControlMsg::injectKeycode(1, -1, 0, 0) << hex("00 01 FFFFFFFF 00000000 00000000");
    QTest::newRow("touch press")
        << ControlMsg::injectTouch(quint64(-2), 0, 1, 1, at(100, 200, 1080, 2400), 1.0f)
        << hex("02 00 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 FFFF 00000001 00000001");
    QTest::newRow("touch move")
        << ControlMsg::injectTouch(quint64(-2), 2, 1, 1, at(100, 200, 1080, 2400), 0.0f)
        << hex("02 02 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 0000 00000001 00000001");
    QTest::newRow("touch release")
        << ControlMsg::injectTouch(quint64(-2), 1, 1, 1, at(100, 200, 1080, 2400), 0.0f)
        << hex("02 01 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 0000 00000001 00000001");
    QTest::newRow("touch negative point, unknown screen")
        << ControlMsg::injectTouch(7, 0, 0, 0, at(-5, -1, -1, -1), 0.5f)
        << hex("02 00 0000000000000007 FFFFFFFB FFFFFFFF FFFF FFFF 8000 00000000 00000000");
    QTest::newRow("scroll") << ControlMsg::injectScroll(at(10, 20, 720, 1600), 8.0f, -20.0f, 4)
                            << hex("03 0000000A 00000014 02D0 0640 4000 8000 00000004");
    QTest::newRow("inject text") << ControlMsg::injectText("hé") << hex("01 00000003 68C3A9");
    QTest::newRow("inject empty text") << ControlMsg::injectText("") << hex("01 00000000");
    QTest::newRow("back or screen on") << ControlMsg::backOrScreenOn(1) << hex("04 01");
    QTest::newRow("get clipboard") << ControlMsg::getClipboard(2) << hex("08 02");
    QTest::newRow("set clipboard with paste")
        << ControlMsg::setClipboard(0, "hello", true) << hex("09 0000000000000000 01 00000005 68656C6C6F");
    QTest::newRow("set clipboard with sequence")
        << ControlMsg::setClipboard(0x0102030405060708ULL, "a", false) << hex("09 0102030405060708 00 00000001 61");
    QTest::newRow("set clipboard empty") << ControlMsg::setClipboard(0, "", true) << hex("09 0000000000000000 00 00000000");
    QTest::newRow("display power on") << ControlMsg::setDisplayPower(true) << hex("0A 01");
    QTest::newRow("display power off") << ControlMsg::setDisplayPower(false) << hex("0A 00");
    QTest::newRow("rotate device") << ControlMsg::ofType(ControlMsgType::RotateDevice) << hex("0B");
    QTest::newRow("reset video") << ControlMsg::ofType(ControlMsgType::ResetVideo) << hex("11");
    QTest::newRow("panel type alone") << ControlMsg::ofType(ControlMsgType(5)) << hex("05");
}

void TestControlMsgEncoder::vectors()
{
    QFETCH(ControlMsg, msg);
    QFETCH(QByteArray, bytes);
    QCOMPARE(ControlMsgEncoder::serialize(msg).toHex(' '), bytes.toHex(' '));
}

void TestControlMsgEncoder::pressureIsFixedPoint_data()
{
    QTest::addColumn<float>("pressure");
    QTest::addColumn<int>("fixed");
    QTest::newRow("none") << 0.0f << 0;
    QTest::newRow("full is capped") << 1.0f << 0xFFFF;
    QTest::newRow("half") << 0.5f << 0x8000;
    QTest::newRow("truncated, not rounded") << 0.99999f << 65535;
    QTest::newRow("small") << 0.0001f << 6;
    QTest::newRow("above one") << 2.0f << 0xFFFF;
    QTest::newRow("negative") << -0.5f << 0;
    QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << 0;
}

void TestControlMsgEncoder::pressureIsFixedPoint()
{
    QFETCH(float, pressure);
    QFETCH(int, fixed);
    const ControlMsg msg = ControlMsg::injectTouch(0, 0, 0, 0, at(0, 0, 1, 1), pressure);
    const QList<WireMessage> wire = readWire(ControlMsgEncoder::serialize(msg));
    QCOMPARE(wire.size(), 1);
    QCOMPARE(int(wire.first().pressure), fixed);
}

void TestControlMsgEncoder::scrollIsNormalised_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("fixed");
    QTest::newRow("20 saturates") << 20.0f << 32767;
    QTest::newRow("-20 saturates") << -20.0f << -32768;
    QTest::newRow("8 is half") << 8.0f << 16384;
    QTest::newRow("16 is the top") << 16.0f << 32767;
    QTest::newRow("-16 is the bottom") << -16.0f << -32768;
    QTest::newRow("-8") << -8.0f << -16384;
    QTest::newRow("zero") << 0.0f << 0;
    QTest::newRow("just below 16") << 15.9999f << 32767;
    QTest::newRow("one") << 1.0f << 2048;
    QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << 0;
}

void TestControlMsgEncoder::scrollIsNormalised()
{
    QFETCH(float, value);
    QFETCH(int, fixed);
    const ControlMsg msg = ControlMsg::injectScroll(at(1, 2, 3, 4), value, -value, 0);
    const QList<WireMessage> wire = readWire(ControlMsgEncoder::serialize(msg));
    QCOMPARE(wire.size(), 1);
    QCOMPARE(int(wire.first().hscroll), fixed);
    if (!std::isnan(value))
        QCOMPARE(int(wire.first().vscroll), int(ControlMsgEncoder::scrollToFixed(-value)));
}

void TestControlMsgEncoder::injectTextIsCutBeforeUtf8_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("400 ASCII") << QString(400, 'a') << QByteArray(300, 'a');
    QTest::newRow("400 two-byte") << QString(400, QChar(0xE9)) << QString(300, QChar(0xE9)).toUtf8();
    QTest::newRow("300 kept whole") << QString(300, 'b') << QByteArray(300, 'b');
    QTest::newRow("three-byte kept past 300 bytes") << QString(350, QChar(0x4E2D)) << QString(300, QChar(0x4E2D)).toUtf8();
}

void TestControlMsgEncoder::injectTextIsCutBeforeUtf8()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, expected);
    const QList<WireMessage> wire = readWire(ControlMsgEncoder::serialize(ControlMsg::injectText(text)));
    QCOMPARE(wire.size(), 1);
    QCOMPARE(wire.first().type, 1);
    QCOMPARE(wire.first().text.size(), expected.size());
    QCOMPARE(wire.first().text, expected);
}

void TestControlMsgEncoder::clipboardTextIsCutBeforeUtf8()
{
    const QString ascii(262200, 'x');
    QList<WireMessage> wire = readWire(ControlMsgEncoder::serialize(ControlMsg::setClipboard(0, ascii, true)));
    QCOMPARE(wire.size(), 1);
    QCOMPARE(wire.first().text.size(), 262130);

    // Three UTF-8 bytes per character: the cut counts characters, so the bytes go past the limit.
    const QString wide(262131, QChar(0x4E2D));
    const QByteArray bytes = ControlMsgEncoder::serialize(ControlMsg::setClipboard(5, wide, true));
    wire = readWire(bytes);
    QCOMPARE(wire.size(), 1);
    QCOMPARE(wire.first().text.size(), 262130 * 3);
    QCOMPARE(wire.first().sequence, quint64(5));
    QVERIFY(wire.first().paste);
    QCOMPARE(bytes.size(), 14 + 262130 * 3);
}

void TestControlMsgEncoder::emptyClipboardTextLeavesTheRecordZeroed()
{
    const ControlMsg msg = ControlMsg::setClipboard(42, QString(), true);
    QVERIFY(msg.text.isNull());
    QCOMPARE(msg.clipboard.sequence, quint64(0));
    QVERIFY(!msg.clipboard.paste);
}

void TestControlMsgEncoder::copiesShareTheirText()
{
    ControlMsg copy;
    {
        const ControlMsg original = ControlMsg::setClipboard(0, "shared text", true);
        copy = original;
        QCOMPARE(copy.text.constData(), original.text.constData());
    }
    // The original is gone; the copy still holds the bytes.
    QCOMPARE(readWire(ControlMsgEncoder::serialize(copy)).value(0).text, QByteArray("shared text"));
}

void TestControlMsgEncoder::randomMessagesRoundTrip()
{
    QRandomGenerator random(1234);
    QByteArray stream;
    QList<ControlMsg> sent;
    for (int i = 0; i < 500; ++i) {
        const quint32 r = random.generate();
        const ControlPosition position = at(qint32(random.generate()), qint32(random.generate()),
                                            int(random.bounded(65536)), int(random.bounded(65536)));
        ControlMsg msg;
        switch (r % 6) {
        case 0: msg = ControlMsg::injectKeycode(r & 1, qint32(random.generate()), random.generate(), random.generate()); break;
        case 1: msg = ControlMsg::injectTouch(random.generate64(), r % 3, random.generate(), random.generate(), position, float(random.bounded(1.0))); break;
        case 2: msg = ControlMsg::injectScroll(position, 0.0f, 0.0f, random.generate()); break;
        case 3: msg = ControlMsg::setClipboard(random.generate64(), QString::number(random.generate64()), r & 2); break;
        case 4: msg = ControlMsg::injectText(QString(int(random.bounded(400)), QChar(0x3B1))); break;
        default: msg = ControlMsg::ofType(ControlMsgType::RotateDevice); break;
        }
        sent << msg;
        stream += ControlMsgEncoder::serialize(msg);
    }
    bool complete = false;
    const QList<WireMessage> wire = readWire(stream, &complete);
    QVERIFY(complete);
    QCOMPARE(wire.size(), sent.size());
    for (int i = 0; i < sent.size(); ++i) {
        const ControlMsg &m = sent.at(i);
        const WireMessage &w = wire.at(i);
        QCOMPARE(w.type, int(m.type));
        switch (m.type) {
        case ControlMsgType::InjectKeycode:
            QCOMPARE(w.action, m.keycode.action);
            QCOMPARE(w.keycode, m.keycode.keycode);
            QCOMPARE(w.repeat, m.keycode.repeat);
            QCOMPARE(w.metastate, m.keycode.metastate);
            break;
        case ControlMsgType::InjectTouchEvent:
            QCOMPARE(w.pointerId, m.touch.pointerId);
            QCOMPARE(w.action, m.touch.action);
            QCOMPARE(w.x, m.touch.position.point.x());
            QCOMPARE(w.y, m.touch.position.point.y());
            QCOMPARE(int(w.screenWidth), m.touch.position.screenSize.width());
            QCOMPARE(int(w.screenHeight), m.touch.position.screenSize.height());
            QCOMPARE(w.pressure, quint16(qMin(65535.0, std::trunc(double(m.touch.pressure) * 65536))));
            QCOMPARE(w.actionButton, m.touch.actionButton);
            QCOMPARE(w.buttons, m.touch.buttons);
            break;
        case ControlMsgType::InjectScrollEvent:
            QCOMPARE(w.x, m.scroll.position.point.x());
            QCOMPARE(w.y, m.scroll.position.point.y());
            QCOMPARE(w.buttons, m.scroll.buttons);
            break;
        case ControlMsgType::SetClipboard:
            QCOMPARE(w.sequence, m.clipboard.sequence);
            QCOMPARE(w.paste, m.clipboard.paste);
            QCOMPARE(w.text, m.text);
            break;
        case ControlMsgType::InjectText:
            QCOMPARE(w.text, m.text);
            break;
        default:
            QCOMPARE(w.size, 1);
            break;
        }
    }
}

QTEST_GUILESS_MAIN(TestControlMsgEncoder)
#include "tst_controlmsgencoder.moc"
