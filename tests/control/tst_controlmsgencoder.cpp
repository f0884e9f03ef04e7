// Control messages as bytes: exact vectors for every type, fixed-point fields and text limits read
// back through a reader written from the byte layouts.
#include "controlmsg.h"
#include "controlmsgencoder.h"
#include "controlwire.h"

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
    void fixedPoint_data();
    void fixedPoint();
    void textIsCutInCharacters_data();
    void textIsCutInCharacters();
};

void TestControlMsgEncoder::vectors_data()
{
    // Touches as the mouse makes them, key presses, pasted text, rotation and video reset are pinned
    // byte for byte on the controller's socket by tst_controller.
    QTest::addColumn<ControlMsg>("msg");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("key with repeat and meta")
        << ControlMsg::injectKeycode(0, 31, 2, 0x1000) << hex("00 00 0000001F 00000002 00001000");
    QTest::newRow("negative key code") << ControlMsg::injectKeycode(1, -1, 0, 0) << hex("00 01 FFFFFFFF 00000000 00000000");
    QTest::newRow("touch negative point, unknown screen")
        << ControlMsg::injectTouch(7, 0, 0, 0, at(-5, -1, -1, -1), 0.5f)
        << hex("02 00 0000000000000007 FFFFFFFB FFFFFFFF FFFF FFFF 8000 00000000 00000000");
    QTest::newRow("scroll") << ControlMsg::injectScroll(at(10, 20, 720, 1600), 8.0f, -20.0f, 4)
                            << hex("03 0000000A 00000014 02D0 0640 4000 8000 00000004");
    QTest::newRow("inject text") << ControlMsg::injectText("hé") << hex("01 00000003 68C3A9");
    QTest::newRow("inject empty text") << ControlMsg::injectText("") << hex("01 00000000");
    QTest::newRow("back or screen on") << ControlMsg::backOrScreenOn(1) << hex("04 01");
    QTest::newRow("get clipboard") << ControlMsg::getClipboard(2) << hex("08 02");
    QTest::newRow("set clipboard with sequence and paste")
        << ControlMsg::setClipboard(0x0102030405060708ULL, "hello", true)
        << hex("09 0102030405060708 01 00000005 68656C6C6F");
    QTest::newRow("set clipboard without paste") << ControlMsg::setClipboard(0, "a", false) << hex("09 0000000000000000 00 00000001 61");
    // No text: the whole record stays zeroed, sequence and paste included.
    QTest::newRow("set clipboard empty") << ControlMsg::setClipboard(42, QString(), true) << hex("09 0000000000000000 00 00000000");
    QTest::newRow("display power on") << ControlMsg::setDisplayPower(true) << hex("0A 01");
    QTest::newRow("display power off") << ControlMsg::setDisplayPower(false) << hex("0A 00");
}

void TestControlMsgEncoder::vectors()
{
    QFETCH(ControlMsg, msg);
    QFETCH(QByteArray, bytes);
    QCOMPARE(ControlMsgEncoder::serialize(msg).toHex(' '), bytes.toHex(' '));
}

void TestControlMsgEncoder::fixedPoint_data()
{
    // Touch pressure is unsigned 16-bit of 1.0; scroll amounts are signed 16-bit of 16.0.
    QTest::addColumn<bool>("scroll");
    QTest::addColumn<float>("value");
    QTest::addColumn<int>("fixed");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("pressure: full is capped") << false << 1.0f << 0xFFFF;
    QTest::newRow("pressure: half") << false << 0.5f << 0x8000;
    QTest::newRow("pressure: truncated, not rounded") << false << 0.99999f << 65535;
    QTest::newRow("pressure: above one") << false << 2.0f << 0xFFFF;
    QTest::newRow("pressure: negative") << false << -0.5f << 0;
    QTest::newRow("pressure: nan") << false << nan << 0;
    QTest::newRow("scroll: 20 saturates") << true << 20.0f << 32767;
    QTest::newRow("scroll: -20 saturates") << true << -20.0f << -32768;
    QTest::newRow("scroll: 16 is the top") << true << 16.0f << 32767;
    QTest::newRow("scroll: -16 is the bottom") << true << -16.0f << -32768;
    QTest::newRow("scroll: one") << true << 1.0f << 2048;
    QTest::newRow("scroll: nan") << true << nan << 0;
}

void TestControlMsgEncoder::fixedPoint()
{
    QFETCH(bool, scroll);
    QFETCH(float, value);
    QFETCH(int, fixed);
    const ControlMsg msg = scroll ? ControlMsg::injectScroll(at(1, 2, 3, 4), value, 0.0f, 0)
                                  : ControlMsg::injectTouch(0, 0, 0, 0, at(0, 0, 1, 1), value);
    const QList<WireMessage> wire = readWire(ControlMsgEncoder::serialize(msg));
    QCOMPARE(wire.size(), 1);
    QCOMPARE(scroll ? int(wire.first().hscroll) : int(wire.first().pressure), fixed);
}

void TestControlMsgEncoder::textIsCutInCharacters_data()
{
    // Injected text stops at 300 characters, clipboard text at 262130, whatever their UTF-8 size.
    QTest::addColumn<bool>("clipboard");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("inject: 400 two-byte") << false << QString(400, QChar(0xE9)) << QString(300, QChar(0xE9)).toUtf8();
    QTest::newRow("inject: 300 kept whole") << false << QString(300, 'b') << QByteArray(300, 'b');
    QTest::newRow("inject: three-byte kept past 300 bytes")
        << false << QString(350, QChar(0x4E2D)) << QString(300, QChar(0x4E2D)).toUtf8();
    QTest::newRow("clipboard: ASCII") << true << QString(262200, 'x') << QByteArray(262130, 'x');
    QTest::newRow("clipboard: three-byte")
        << true << QString(262131, QChar(0x4E2D)) << QString(262130, QChar(0x4E2D)).toUtf8();
}

void TestControlMsgEncoder::textIsCutInCharacters()
{
    QFETCH(bool, clipboard);
    QFETCH(QString, text);
    QFETCH(QByteArray, expected);
    const QByteArray bytes =
        ControlMsgEncoder::serialize(clipboard ? ControlMsg::setClipboard(5, text, true) : ControlMsg::injectText(text));
    const QList<WireMessage> wire = readWire(bytes);
    QCOMPARE(wire.size(), 1);
    QCOMPARE(wire.first().type, clipboard ? 9 : 1);
    QCOMPARE(wire.first().text.size(), expected.size());
    QCOMPARE(wire.first().text, expected);
    QCOMPARE(bytes.size(), (clipboard ? 14 : 5) + expected.size());
    if (clipboard) {
        QCOMPARE(wire.first().sequence, quint64(5));
        QVERIFY(wire.first().paste);
    }
}

QTEST_GUILESS_MAIN(TestControlMsgEncoder)
#include "tst_controlmsgencoder.moc"
