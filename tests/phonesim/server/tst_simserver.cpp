#include "simserver.h"
#include "simtestsupport.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(FakeTunnel::Answer)

// The server's life as the PC sees it: which sockets it opens in which order, what each starts
// with, how it fails, how it ends, and what the control socket does to the phone.
class TestSimServer : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private:
    static QByteArray hex(const char *text) { return QByteArray::fromHex(text); }

    static QString outputText(const QSignalSpy &spy)
    {
        QString text;
        for (const QList<QVariant> &args : spy)
            text += QString::fromUtf8(args.first().toByteArray());
        return text;
    }

private slots:
    void opensSocketsInOrder_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("roles");
        QTest::newRow("all three") << "video=true audio=true control=true" << QStringList{"video", "audio", "control"};
        QTest::newRow("audio off") << "video=true audio=false control=true" << QStringList{"video", "control"};
        QTest::newRow("video off") << "video=false audio=true control=true" << QStringList{"audio", "control"};
        QTest::newRow("control only") << "video=false audio=false control=true" << QStringList{"control"};
        QTest::newRow("video only") << "video=true audio=false control=false" << QStringList{"video"};
    }

    void opensSocketsInOrder()
    {
        QFETCH(QString, options);
        QFETCH(QStringList, roles);
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=0000abcd max_size=320 " + options));
        server.start();
        QTRY_COMPARE(tunnel.channels.size(), roles.size());
        for (const QString &name : std::as_const(tunnel.names))
            QCOMPARE(name, QString("scrcpy_0000abcd"));
        for (int i = 0; i < roles.size(); ++i) {
            FakeChannel *channel = tunnel.channels[i];
            const int headerSize = roles[i] == "control" ? 0 : 4;
            QTRY_VERIFY(channel->written.size() >= (i == 0 ? 64 : 0) + headerSize);
            QByteArray bytes = channel->written;
            if (i == 0) {
                // Only the first socket carries the device name, NUL padded to 64 bytes.
                QCOMPARE(bytes.left(9), QByteArray("Pixel Sim"));
                QCOMPARE(bytes.mid(9, 55), QByteArray(55, '\0'));
                bytes.remove(0, 64);
            }
            if (roles[i] == "video")
                QCOMPARE(bytes.left(4), QByteArray("h264"));
            else if (roles[i] == "audio")
                QCOMPARE(bytes.left(4), QByteArray("opus"));
            else
                QVERIFY(bytes.isEmpty());
        }
        QVERIFY(!tunnel.channels.first()->wasClosed());
    }

    void opensEachSocketAfterThePreviousWasAccepted()
    {
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        tunnel.answers = {FakeTunnel::Answer::Hold, FakeTunnel::Answer::Hold, FakeTunnel::Answer::Hold};
        SimServer server(phone.phone.get(), serverCommand("scid=00000001"));
        server.start();
        QCoreApplication::processEvents();
        QCOMPARE(tunnel.names.size(), 1);
        tunnel.channels[0]->accept();
        QCOMPARE(tunnel.names.size(), 2);
        QVERIFY(tunnel.channels[0]->written.isEmpty()); // nothing is sent before all sockets are there
        tunnel.channels[1]->accept();
        QCOMPARE(tunnel.names.size(), 3);
        tunnel.channels[2]->accept();
        QCOMPARE(tunnel.channels[0]->written.left(9), QByteArray("Pixel Sim"));
    }

    void failsWhenTheTunnelRefuses_data()
    {
        QTest::addColumn<QList<FakeTunnel::Answer>>("answers");
        QTest::addColumn<int>("openedBeforeFailure");
        using A = FakeTunnel::Answer;
        QTest::newRow("no tunnel") << QList<A>{A::Refuse} << 0;
        QTest::newRow("video refused by close") << QList<A>{A::CloseAtOnce} << 0;
        QTest::newRow("control refused") << QList<A>{A::Accept, A::Accept, A::Refuse} << 2;
        QTest::newRow("audio closed at once") << QList<A>{A::Accept, A::CloseAtOnce} << 1;
    }

    void failsWhenTheTunnelRefuses()
    {
        QFETCH(QList<FakeTunnel::Answer>, answers);
        QFETCH(int, openedBeforeFailure);
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        tunnel.answers = answers;
        SimServer server(phone.phone.get(), serverCommand("scid=00000001"));
        QSignalSpy output(&server, &SimServer::output);
        QSignalSpy finished(&server, &SimServer::finished);
        server.start();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), 1);
        QVERIFY(outputText(output).contains("Connection refused"));
        for (int i = 0; i < openedBeforeFailure; ++i)
            QVERIFY(tunnel.channels[i]->wasClosed());
        QCOMPARE(phone.journal("server_stop").size(), 1);
        QCOMPARE(phone.journal("server_stop").first().value("exitCode").toInt(), 1);
    }

    void failsWithoutTheServerFile()
    {
        TestPhone phone(false);
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=00000001"));
        QSignalSpy output(&server, &SimServer::output);
        QSignalSpy finished(&server, &SimServer::finished);
        server.start();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), 1);
        QVERIFY(outputText(output).contains("java.lang.ClassNotFoundException: com.genymobile.scrcpy.Server"));
        QVERIFY(tunnel.names.isEmpty());
        QVERIFY(phone.journal("server_start").isEmpty());
    }

    void failsOnBadArguments_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("message");
        QTest::newRow("version") << serverCommand("scid=00000001", "3.2")
                                 << "[server] ERROR: The server version (3.3.1) does not match the client (3.2)";
        QTest::newRow("unknown option") << serverCommand("scid=00000001 tunnel_mode=x") << "Unknown server option: tunnel_mode";
        QTest::newRow("nothing enabled") << serverCommand("video=false audio=false control=false") << "At least one";
    }

    void failsOnBadArguments()
    {
        QFETCH(QString, command);
        QFETCH(QString, message);
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), command);
        QSignalSpy output(&server, &SimServer::output);
        QSignalSpy finished(&server, &SimServer::finished);
        server.start();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), 1);
        QVERIFY2(outputText(output).contains(message), qPrintable(outputText(output)));
        QVERIFY(tunnel.names.isEmpty());
    }

    void journalsTheStartWithItsOptions()
    {
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("video_bit_rate=2000000 max_size=280 max_fps=5 scid=0badcafe"));
        server.start();
        const QList<QJsonObject> starts = phone.journal("server_start");
        QCOMPARE(starts.size(), 1);
        QCOMPARE(starts[0].value("video_bit_rate").toInt(), 2000000);
        QCOMPARE(starts[0].value("max_size").toInt(), 280);
        QCOMPARE(starts[0].value("max_fps").toInt(), 5);
        QCOMPARE(starts[0].value("scid").toString(), QString("0badcafe"));
    }

    void killEndsLikeAKilledProcess_data()
    {
        QTest::addColumn<bool>("byAdmin");
        QTest::newRow("kill slot") << false;
        QTest::newRow("admin request") << true;
    }

    void killEndsLikeAKilledProcess()
    {
        QFETCH(bool, byAdmin);
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=00000001 max_size=160"));
        QSignalSpy finished(&server, &SimServer::finished);
        server.start();
        QTRY_COMPARE(tunnel.channels.size(), 3);
        QTRY_VERIFY(tunnel.channels[2]->isOpen());
        if (byAdmin)
            emit phone.phone->killServerRequested();
        else
            server.kill();
        for (FakeChannel *channel : std::as_const(tunnel.channels))
            QVERIFY(channel->wasClosed());
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), 137);
        const QList<QJsonObject> stops = phone.journal("server_stop");
        QCOMPARE(stops.size(), 1);
        QCOMPARE(stops[0].value("reason").toString(), QString("killed"));
    }

    void endsWhenThePcClosesTheVideoSocket()
    {
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=00000001 max_size=160"));
        QSignalSpy finished(&server, &SimServer::finished);
        server.start();
        QTRY_COMPARE(tunnel.channels.size(), 3);
        QTRY_VERIFY(tunnel.channels[2]->isOpen());
        tunnel.channels[0]->close();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().first().toInt(), 0);
        QVERIFY(tunnel.channels[1]->wasClosed());
        QVERIFY(tunnel.channels[2]->wasClosed());
    }

    void controlMessagesReachThePhone()
    {
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=00000001 max_size=160 audio=false"));
        server.start();
        QTRY_COMPARE(tunnel.channels.size(), 2);
        FakeChannel *control = tunnel.channels[1];
        QTRY_VERIFY(control->isOpen());
        QSignalSpy rotation(phone.phone.get(), &Phone::rotationChanged);
        // Set clipboard "hi" with paste and sequence 5, then a touch split across two writes, then rotate.
        const QByteArray bytes = hex("09 0000000000000005 01 00000002 6869")
                                 + hex("02 00 FFFFFFFFFFFFFFFE 00000050 000000A0 00A0 0160 FFFF 00000001 00000001")
                                 + hex("0B");
        control->sendFromPc(bytes.left(20));
        control->sendFromPc(bytes.mid(20));
        QCOMPARE(phone.phone->clipboard(), QString("hi"));
        QCOMPARE(rotation.size(), 1);
        QCOMPARE(phone.phone->rotation(), 1);
        // Sequence 5 asked for an acknowledgement.
        QCOMPARE(control->written, hex("01 0000000000000005"));
        const QList<QJsonObject> lines = phone.journal("control");
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0].value("type").toString(), QString("SetClipboard"));
        QCOMPARE(lines[0].value("paste").toBool(), true);
        QCOMPARE(lines[1].value("type").toString(), QString("InjectTouchEvent"));
        QCOMPARE(lines[1].value("pointerId").toInteger(), -2);
        QCOMPARE(lines[1].value("x").toInt(), 80);
        QCOMPARE(lines[1].value("screenHeight").toInt(), 352);
        QCOMPARE(lines[2].value("type").toString(), QString("RotateDevice"));
    }

    void sendsThePhoneClipboardToThePc()
    {
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=00000001 video=false audio=false"));
        server.start();
        QTRY_COMPARE(tunnel.channels.size(), 1);
        FakeChannel *control = tunnel.channels[0];
        QTRY_COMPARE(control->written.size(), 64);
        control->written.clear();
        phone.phone->setClipboard("hello", false);
        QCOMPARE(control->written, hex("00 00000005 68656C6C6F"));
        // A text that came from the PC is not echoed back.
        control->written.clear();
        control->sendFromPc(hex("09 0000000000000000 00 00000001 41"));
        QVERIFY(control->written.isEmpty());
        // Asking for the clipboard answers with it.
        control->sendFromPc(hex("08 00"));
        QCOMPARE(control->written, hex("00 00000001 41"));
    }

    void garbageClosesOnlyTheControlSocket()
    {
        TestPhone phone;
        FakeTunnel tunnel(phone.phone.get());
        SimServer server(phone.phone.get(), serverCommand("scid=00000001 max_size=160 audio=false"));
        QSignalSpy finished(&server, &SimServer::finished);
        server.start();
        QTRY_COMPARE(tunnel.channels.size(), 2);
        QTRY_VERIFY(tunnel.channels[1]->isOpen());
        tunnel.channels[1]->sendFromPc(hex("0B 63 64 65"));
        QVERIFY(tunnel.channels[1]->wasClosed());
        QCOMPARE(phone.journal("control").size(), 1);
        const QList<QJsonObject> errors = phone.journal("error");
        QCOMPARE(errors.size(), 1);
        QCOMPARE(errors[0].value("source").toString(), QString("control"));
        QTest::qWait(50);
        QVERIFY(finished.isEmpty());
        QVERIFY(tunnel.channels[0]->isOpen());
    }
};

QTEST_MAIN(TestSimServer)
#include "tst_simserver.moc"
