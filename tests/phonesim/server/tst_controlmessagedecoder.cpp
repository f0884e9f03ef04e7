#include "controlmessagedecoder.h"

#include <QJsonObject>
#include <QtTest>

// Message bytes here are written by hand from the control protocol's byte layouts.
class TestControlMessageDecoder : public QObject
{
    Q_OBJECT

private:
    static QByteArray hex(const char *text) { return QByteArray::fromHex(text); }

    static void compareMessage(const QJsonObject &actual, const QJsonObject &expected)
    {
        QCOMPARE(actual.keys(), expected.keys());
        for (auto it = expected.begin(); it != expected.end(); ++it) {
            const QJsonValue value = actual.value(it.key());
            if (it.value().isDouble())
                QVERIFY2(qFuzzyCompare(value.toDouble() + 1000.0, it.value().toDouble() + 1000.0), qPrintable(it.key()));
            else
                QVERIFY2(value == it.value(), qPrintable(it.key()));
        }
    }

private slots:
    void decodesEachType_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QJsonObject>("expected");
        QTest::newRow("key up with repeat and meta")
            << hex("00 01 0000001A 00000002 00001001")
            << QJsonObject{{"type", "InjectKeycode"}, {"action", 1}, {"keycode", 26}, {"repeat", 2}, {"metastate", 4097}};
        QTest::newRow("text utf8") << hex("01 00000003 E282AC") << QJsonObject{{"type", "InjectText"}, {"text", "\u20ac"}};
        QTest::newRow("touch down")
            << hex("02 00 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 FFFF 00000001 00000001")
            << QJsonObject{{"type", "InjectTouchEvent"}, {"action", 0}, {"pointerId", -2}, {"x", 100}, {"y", 200},
                           {"screenWidth", 1080}, {"screenHeight", 2400}, {"pressure", 1.0},
                           {"actionButton", 1}, {"buttons", 1}};
        QTest::newRow("touch move half pressure")
            << hex("02 02 0000000000000003 FFFFFFF6 00000000 02D0 0500 8000 00000000 00000000")
            << QJsonObject{{"type", "InjectTouchEvent"}, {"action", 2}, {"pointerId", 3}, {"x", -10}, {"y", 0},
                           {"screenWidth", 720}, {"screenHeight", 1280}, {"pressure", 0.5},
                           {"actionButton", 0}, {"buttons", 0}};
        QTest::newRow("scroll")
            << hex("03 00000010 00000020 0438 0960 4000 C000 00000001")
            << QJsonObject{{"type", "InjectScrollEvent"}, {"x", 16}, {"y", 32}, {"screenWidth", 1080},
                           {"screenHeight", 2400}, {"hscroll", 8.0}, {"vscroll", -8.0}, {"buttons", 1}};
        QTest::newRow("back or screen on") << hex("04 01") << QJsonObject{{"type", "BackOrScreenOn"}, {"action", 1}};
        QTest::newRow("expand notifications") << hex("05") << QJsonObject{{"type", "ExpandNotificationPanel"}};
        QTest::newRow("expand settings") << hex("06") << QJsonObject{{"type", "ExpandSettingsPanel"}};
        QTest::newRow("collapse panels") << hex("07") << QJsonObject{{"type", "CollapsePanels"}};
        QTest::newRow("get clipboard") << hex("08 01") << QJsonObject{{"type", "GetClipboard"}, {"copyKey", 1}};
        QTest::newRow("set clipboard and paste")
            << hex("09 0000000000000007 01 00000003 616263")
            << QJsonObject{{"type", "SetClipboard"}, {"sequence", 7}, {"paste", true}, {"text", "abc"}};
        QTest::newRow("set clipboard empty")
            << hex("09 0000000000000000 00 00000000")
            << QJsonObject{{"type", "SetClipboard"}, {"sequence", 0}, {"paste", false}, {"text", ""}};
        QTest::newRow("display power off") << hex("0A 00") << QJsonObject{{"type", "SetDisplayPower"}, {"on", false}};
        QTest::newRow("rotate") << hex("0B") << QJsonObject{{"type", "RotateDevice"}};
        QTest::newRow("reset video") << hex("11") << QJsonObject{{"type", "ResetVideo"}};
    }

    void decodesEachType()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QJsonObject, expected);
        ControlMessageDecoder decoder;
        // Every byte but the last leaves the message incomplete.
        QVERIFY(decoder.feed(bytes.left(bytes.size() - 1)).isEmpty());
        const QList<QJsonObject> messages = decoder.feed(bytes.right(1));
        QVERIFY(!decoder.hasError());
        QCOMPARE(messages.size(), 1);
        compareMessage(messages.first(), expected);
    }

    void decodesAStreamFedOneByteAtATime()
    {
        const QByteArray stream = hex("00 00 00000003 00000000 00000000") + hex("0B")
                                  + hex("09 0000000000000000 01 00000002 6869")
                                  + hex("02 01 FFFFFFFFFFFFFFFE 00000064 000000C8 0438 0960 0000 00000001 00000000")
                                  + hex("11");
        ControlMessageDecoder decoder;
        QList<QJsonObject> messages;
        for (char byte : stream)
            messages += decoder.feed(QByteArray(1, byte));
        QStringList types;
        for (const QJsonObject &message : messages)
            types << message.value("type").toString();
        QCOMPARE(types, QStringList({"InjectKeycode", "RotateDevice", "SetClipboard", "InjectTouchEvent", "ResetVideo"}));
        QCOMPARE(messages[2].value("text").toString(), QString("hi"));
        QCOMPARE(messages[3].value("action").toInt(), 1);
    }

    void rejectsGarbage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("decodedBefore");
        QTest::newRow("unknown type 0x63") << hex("63 00 00") << 0;
        QTest::newRow("unknown type 0xff after a rotate") << hex("0B FF") << 1;
        QTest::newRow("type 12") << hex("0C 00") << 0;
        QTest::newRow("huge text length") << hex("01 7FFFFFFF 41") << 0;
        QTest::newRow("huge clipboard length") << hex("09 0000000000000000 00 00200000") << 0;
    }

    void rejectsGarbage()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, decodedBefore);
        ControlMessageDecoder decoder;
        QCOMPARE(decoder.feed(bytes).size(), decodedBefore);
        QVERIFY(decoder.hasError());
        QVERIFY(!decoder.error().isEmpty());
        // A broken stream stays broken: later valid bytes are not trusted.
        QVERIFY(decoder.feed(hex("0B")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestControlMessageDecoder)
#include "tst_controlmessagedecoder.moc"
