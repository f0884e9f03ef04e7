#include "autojsprotocol.h"
#include "autojsserver.h"
#include "simtestsupport.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QtTest>

namespace {
// The phone's AutoJS port with a PC connection that Korvel's own framing talks to; the framing
// itself is pinned byte by byte in tests/organisation/tst_autojs.
struct Rig
{
    TestPhone phone;
    AutojsServer server{phone.phone.get()};

    FakeChannel *open()
    {
        auto *channel = new FakeChannel(&server);
        channel->accept();
        server.accept(channel);
        return channel;
    }
};

QByteArray stopAll()
{
    return AutojsProtocol::encodeCommand(40123, {{"command", "stopAll"}});
}
} // namespace

// The AutoJS command port as the PC uses it: a greeting in the phone's framing, and commands
// recorded in the journal.
class TestAutojsServer : public QObject
{
    Q_OBJECT

private slots:
    void greetsThePcWithHello()
    {
        Rig rig;
        QByteArray bytes = rig.open()->written;
        quint32 type = 0;
        QByteArray body;
        QCOMPARE(AutojsProtocol::takeReply(bytes, &type, &body), AutojsProtocol::Take::Message);
        QCOMPARE(type, AutojsProtocol::TypeJson);
        QVERIFY(bytes.isEmpty());
        const QJsonObject hello = QJsonDocument::fromJson(body).object();
        QCOMPARE(hello.value("type").toString(), QString("hello"));
        QCOMPARE(hello.value("data").toObject().value("device_name").toString(), QString("Pixel Sim"));
    }

    void journalsRunAndStopAll_data()
    {
        QTest::addColumn<int>("chunkSize");
        QTest::newRow("whole") << 100000;
        QTest::newRow("byte by byte") << 1;
    }

    void journalsRunAndStopAll()
    {
        QFETCH(int, chunkSize);
        Rig rig;
        FakeChannel *channel = rig.open();
        const QString script = QString("toast('h\u00e9llo');\n").repeated(20);
        const QByteArray bytes =
            AutojsProtocol::encodeCommand(40123, {{"command", "run"}, {"id", 40123}, {"name", "farm"}, {"script", script}})
            + stopAll();
        for (qsizetype at = 0; at < bytes.size(); at += chunkSize)
            channel->sendFromPc(bytes.mid(at, chunkSize));
        const QList<QJsonObject> lines = rig.phone.journal("autojs");
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0].value("type").toString(), QString("run"));
        QCOMPARE(lines[0].value("name").toString(), QString("farm"));
        QCOMPARE(lines[0].value("size").toInt(), script.toUtf8().size());
        QCOMPARE(lines[0].value("sha256").toString(),
                 QString(QCryptographicHash::hash(script.toUtf8(), QCryptographicHash::Sha256).toHex()));
        QCOMPARE(lines[1].value("type").toString(), QString("stopAll"));
        QVERIFY(!channel->wasClosed());
    }

    void garbageClosesOnlyThatChannel_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not a length") << QByteArray("hello world, this is not a header");
        QTest::newRow("too long") << QByteArray("99999999999999" "1\0", 16) + QByteArray(64, 'x');
        QTest::newRow("wrong type byte") << QByteArray("2\0\0\0\0\0\0\0\0\0\0\0\0\0" "7\0" "{}", 18);
        QTest::newRow("not JSON") << QByteArray("5\0\0\0\0\0\0\0\0\0\0\0\0\0" "1\0" "{{{{{", 21);
        QTest::newRow("JSON array") << QByteArray("2\0\0\0\0\0\0\0\0\0\0\0\0\0" "1\0" "[]", 18);
    }

    void garbageClosesOnlyThatChannel()
    {
        QFETCH(QByteArray, bytes);
        Rig rig;
        FakeChannel *bad = rig.open();
        FakeChannel *good = rig.open();
        bad->sendFromPc(bytes);
        QVERIFY(bad->wasClosed());
        QCOMPARE(rig.phone.journal("error").size(), 1);
        QCOMPARE(rig.phone.journal("error").first().value("source").toString(), QString("autojs"));
        good->sendFromPc(stopAll());
        QVERIFY(!good->wasClosed());
        QCOMPARE(rig.phone.journal("autojs").size(), 1);
    }

    void survivesAChannelThatGoesAway()
    {
        Rig rig;
        FakeChannel *channel = rig.open();
        channel->sendFromPc(stopAll().left(10));
        channel->close();
        delete channel;
        // Its connection goes with the deferred deletions; the half command is never run.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(rig.phone.journal("autojs").isEmpty());
        QVERIFY(rig.phone.journal("error").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAutojsServer)
#include "tst_autojsserver.moc"
