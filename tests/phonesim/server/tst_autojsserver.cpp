#include "autojsserver.h"
#include "simtestsupport.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QtTest>

// The AutoJS command port as the PC uses it: a greeting in the phone's 8-byte framing, and
// commands in the PC's 16-byte ASCII framing, recorded in the journal.
class TestAutojsServer : public QObject
{
    Q_OBJECT

private:
    // The PC's framing, built by hand: decimal length in bytes 0-13, "1" in byte 14.
    static QByteArray frame(const QJsonObject &message)
    {
        const QByteArray body = QJsonDocument(message).toJson(QJsonDocument::Compact);
        QByteArray header(16, '\0');
        const QByteArray digits = QByteArray::number(body.size());
        header.replace(0, digits.size(), digits);
        header[14] = '1';
        return header + body;
    }

    static QJsonObject command(const QJsonObject &data)
    {
        return {{"id", 40123}, {"type", "command"}, {"data", data}};
    }

    static QJsonObject runCommand(const QString &script)
    {
        return command({{"command", "run"}, {"id", 40123}, {"name", "farm"}, {"script", script}});
    }

    static FakeChannel *openChannel(AutojsServer &server, QObject *owner)
    {
        auto *channel = new FakeChannel(owner);
        channel->accept();
        server.accept(channel);
        return channel;
    }

private slots:
    void greetsThePcWithHello()
    {
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *channel = openChannel(server, this);
        const QByteArray bytes = channel->written;
        QVERIFY(bytes.size() > 8);
        const quint32 length = qFromBigEndian<quint32>(bytes.constData());
        QCOMPARE(qFromBigEndian<quint32>(bytes.constData() + 4), 1u);
        QCOMPARE(qsizetype(length), bytes.size() - 8);
        const QJsonObject hello = QJsonDocument::fromJson(bytes.mid(8)).object();
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
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *channel = openChannel(server, this);
        const QString script = QString("toast('h\u00e9llo');\n").repeated(20);
        const QByteArray bytes = frame(runCommand(script)) + frame(command({{"command", "stopAll"}}));
        for (qsizetype at = 0; at < bytes.size(); at += chunkSize)
            channel->sendFromPc(bytes.mid(at, chunkSize));
        const QList<QJsonObject> lines = phone.journal("autojs");
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
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *bad = openChannel(server, this);
        FakeChannel *good = openChannel(server, this);
        bad->sendFromPc(bytes);
        QVERIFY(bad->wasClosed());
        const QList<QJsonObject> errors = phone.journal("error");
        QCOMPARE(errors.size(), 1);
        QCOMPARE(errors[0].value("source").toString(), QString("autojs"));
        good->sendFromPc(frame(command({{"command", "stopAll"}})));
        QVERIFY(!good->wasClosed());
        QCOMPARE(phone.journal("autojs").size(), 1);
    }

    void survivesAChannelThatGoesAway()
    {
        TestPhone phone;
        AutojsServer server(phone.phone.get());
        FakeChannel *channel = openChannel(server, this);
        channel->sendFromPc(frame(runCommand("x")).left(10));
        channel->close();
        delete channel;
        QTest::qWait(10);
        QVERIFY(phone.journal("autojs").isEmpty());
        QVERIFY(phone.journal("error").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAutojsServer)
#include "tst_autojsserver.moc"
