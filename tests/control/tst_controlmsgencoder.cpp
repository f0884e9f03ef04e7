// Control messages as bytes: every message of the shared table, the fixed-point fields and the
// text limits.
#include "controlmessages.h"
#include "controlmsgencoder.h"

#include <QtEndian>
#include <QtTest>

Q_DECLARE_METATYPE(ControlMsg)

class TestControlMsgEncoder : public QObject
{
    Q_OBJECT

private slots:
    void writesEachMessageOfTheTable_data()
    {
        QTest::addColumn<ControlMsg>("msg");
        QTest::addColumn<QByteArray>("bytes");
        for (const ControlMessageCase &c : controlMessageCases()) {
            if (c.msg)
                QTest::newRow(c.name) << *c.msg << c.bytes;
        }
    }

    void writesEachMessageOfTheTable()
    {
        QFETCH(ControlMsg, msg);
        QFETCH(QByteArray, bytes);
        QCOMPARE(ControlMsgEncoder::serialize(msg).toHex(' '), bytes.toHex(' '));
    }

    void fixedPoint_data()
    {
        // Touch pressure is unsigned 16-bit of 1.0, scroll amounts signed 16-bit of 16.0; full and half
        // pressure and a saturated scroll are rows of the message table.
        QTest::addColumn<bool>("scroll");
        QTest::addColumn<float>("value");
        QTest::addColumn<int>("fixed");
        const float nan = std::numeric_limits<float>::quiet_NaN();
        QTest::newRow("pressure: truncated, not rounded") << false << 0.99999f << 65535;
        QTest::newRow("pressure: above one") << false << 2.0f << 0xFFFF;
        QTest::newRow("pressure: negative") << false << -0.5f << 0;
        QTest::newRow("pressure: nan") << false << nan << 0;
        QTest::newRow("scroll: 20 saturates") << true << 20.0f << 32767;
        QTest::newRow("scroll: 16 is the top") << true << 16.0f << 32767;
        QTest::newRow("scroll: -16 is the bottom") << true << -16.0f << -32768;
        QTest::newRow("scroll: one") << true << 1.0f << 2048;
        QTest::newRow("scroll: nan") << true << nan << 0;
    }

    void fixedPoint()
    {
        QFETCH(bool, scroll);
        QFETCH(float, value);
        QFETCH(int, fixed);
        QCOMPARE(scroll ? int(ControlMsgEncoder::scrollToFixed(value)) : int(ControlMsgEncoder::pressureToFixed(value)), fixed);
    }

    void textIsCutInCharacters_data()
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

    void textIsCutInCharacters()
    {
        QFETCH(bool, clipboard);
        QFETCH(QString, text);
        QFETCH(QByteArray, expected);
        const QByteArray bytes =
            ControlMsgEncoder::serialize(clipboard ? ControlMsg::setClipboard(5, text, true) : ControlMsg::injectText(text));
        // Type, then for the clipboard sequence 5 and paste, then the byte count and the text.
        const QByteArray head = clipboard ? QByteArray::fromHex("09 0000000000000005 01") : QByteArray::fromHex("01");
        QCOMPARE(bytes.left(head.size()).toHex(' '), head.toHex(' '));
        QCOMPARE(qFromBigEndian<quint32>(bytes.constData() + head.size()), quint32(expected.size()));
        QVERIFY(bytes.mid(head.size() + 4) == expected);
    }
};

QTEST_GUILESS_MAIN(TestControlMsgEncoder)
#include "tst_controlmsgencoder.moc"
