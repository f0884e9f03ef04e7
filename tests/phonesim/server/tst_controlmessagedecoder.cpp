// Phonesim reads back every message of the table that Korvel's encoder is held to.
#include "controlmessagedecoder.h"
#include "controlmessages.h"

#include <QJsonDocument>
#include <QtTest>

namespace {
QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}
}

class TestControlMessageDecoder : public QObject
{
    Q_OBJECT

private slots:
    void readsEachMessageOfTheTable_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QJsonObject>("decoded");
        for (const ControlMessageCase &c : controlMessageCases())
            QTest::newRow(c.name) << c.bytes << c.decoded;
    }

    void readsEachMessageOfTheTable()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QJsonObject, decoded);
        ControlMessageDecoder decoder;
        // However the bytes are split, the message comes out with its last byte and not before.
        for (char byte : bytes.chopped(1))
            QVERIFY(decoder.feed(QByteArray(1, byte)).isEmpty());
        const QList<QJsonObject> messages = decoder.feed(bytes.right(1));
        QVERIFY(!decoder.hasError());
        QCOMPARE(messages.size(), 1);
        QCOMPARE(json(messages.first()), json(decoded));
    }

    void readsTheWholeTableAsOneStream()
    {
        QByteArray stream;
        QList<QByteArray> expected;
        for (const ControlMessageCase &c : controlMessageCases()) {
            stream += c.bytes;
            expected << json(c.decoded);
        }
        ControlMessageDecoder decoder;
        QList<QByteArray> decoded;
        for (qsizetype at = 0; at < stream.size(); at += 7) {
            for (const QJsonObject &message : decoder.feed(stream.mid(at, 7)))
                decoded << json(message);
        }
        QCOMPARE(decoded, expected);
    }

    void rejectsGarbage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("decodedBefore");
        QTest::newRow("unknown type 0x63") << QByteArray::fromHex("63 00 00") << 0;
        QTest::newRow("unknown type 0xff after a rotate") << QByteArray::fromHex("0B FF") << 1;
        QTest::newRow("type 12") << QByteArray::fromHex("0C 00") << 0;
        QTest::newRow("huge text length") << QByteArray::fromHex("01 7FFFFFFF 41") << 0;
        QTest::newRow("huge clipboard length") << QByteArray::fromHex("09 0000000000000000 00 00200000") << 0;
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
        QVERIFY(decoder.feed(QByteArray::fromHex("0B")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestControlMessageDecoder)
#include "tst_controlmessagedecoder.moc"
