#include "controldescription.h"
#include "simserver.h"
#include "simtestsupport.h"

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

    static void verifyFailed(const ServerRig &rig, const QString &message)
    {
        QTRY_COMPARE(rig.finished.size(), 1);
        QCOMPARE(rig.finished.first().first().toInt(), 1);
        QVERIFY2(rig.outputText().contains(message), qPrintable(rig.outputText()));
    }

private slots:
    void opensSocketsInOrder_data()
    {
        // What each socket starts with: the first one the device name, NUL padded to 64 bytes,
        // then the media sockets their codec.
        QTest::addColumn<QString>("options");
        QTest::addColumn<QByteArrayList>("starts");
        const QByteArray name = QByteArray("Pixel Sim").leftJustified(64, '\0');
        QTest::newRow("all three") << "video=true audio=true control=true" << QByteArrayList{name + "h264", "opus", ""};
        QTest::newRow("video off") << "video=false audio=true control=true" << QByteArrayList{name + "opus", ""};
        QTest::newRow("control only") << "video=false audio=false control=true" << QByteArrayList{name};
        QTest::newRow("video only") << "video=true audio=false control=false" << QByteArrayList{name + "h264"};
    }

    void opensSocketsInOrder()
    {
        QFETCH(QString, options);
        QFETCH(QByteArrayList, starts);
        ServerRig rig(serverCommand("scid=0000abcd max_size=320 " + options));
        rig.server.start();
        QTRY_COMPARE(rig.tunnel.channels.size(), starts.size());
        QCOMPARE(rig.tunnel.names, QStringList(starts.size(), "scrcpy_0000abcd"));
        for (int i = 0; i < starts.size(); ++i)
            QTRY_COMPARE(rig.channel(i)->written.left(starts[i].size()), starts[i]);
        // The control socket carries nothing more until the PC or the phone has something to say.
        if (options.endsWith("control=true"))
            QCOMPARE(rig.tunnel.channels.last()->written, starts.last());
        QVERIFY(!rig.channel(0)->wasClosed());
    }

    void opensEachSocketAfterThePreviousWasAccepted()
    {
        ServerRig rig(serverCommand("video_bit_rate=2000000 max_size=280 max_fps=5 scid=0badcafe"));
        rig.tunnel.answers = {FakeTunnel::Answer::Hold, FakeTunnel::Answer::Hold, FakeTunnel::Answer::Hold};
        rig.server.start();
        // The start is journalled at once, with its options (as tst_commandlineoptions reads them).
        QCOMPARE(rig.phone.journal("server_start").value(0).value("scid").toString(), QString("0badcafe"));
        QCoreApplication::processEvents();
        QCOMPARE(rig.tunnel.names.size(), 1);
        rig.channel(0)->accept();
        QCOMPARE(rig.tunnel.names.size(), 2);
        QVERIFY(rig.channel(0)->written.isEmpty()); // nothing is sent before all sockets are there
        rig.channel(1)->accept();
        QCOMPARE(rig.tunnel.names.size(), 3);
        rig.channel(2)->accept();
        QCOMPARE(rig.channel(0)->written.left(9), QByteArray("Pixel Sim"));
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
        ServerRig rig(serverCommand("scid=00000001"));
        rig.tunnel.answers = answers;
        rig.server.start();
        verifyFailed(rig, "Connection refused");
        for (int i = 0; i < openedBeforeFailure; ++i)
            QVERIFY(rig.channel(i)->wasClosed());
        QCOMPARE(rig.phone.journal("server_stop").value(0).value("exitCode").toInt(), 1);
    }

    void failsBeforeAnySocket_data()
    {
        QTest::addColumn<bool>("serverPushed");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("message");
        QTest::newRow("no server file") << false << serverCommand("scid=00000001")
                                        << "java.lang.ClassNotFoundException: com.genymobile.scrcpy.Server";
        QTest::newRow("version") << true << serverCommand("scid=00000001", "3.2")
                                 << "[server] ERROR: The server version (3.3.1) does not match the client (3.2)";
        QTest::newRow("nothing enabled") << true << serverCommand("video=false audio=false control=false") << "At least one";
    }

    void failsBeforeAnySocket()
    {
        QFETCH(bool, serverPushed);
        QFETCH(QString, command);
        QFETCH(QString, message);
        ServerRig rig(command, serverPushed);
        rig.server.start();
        verifyFailed(rig, message);
        QVERIFY(rig.tunnel.names.isEmpty());
        if (!serverPushed)
            QVERIFY(rig.phone.journal("server_start").isEmpty());
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
        ServerRig rig(serverCommand("scid=00000001 max_size=160"));
        QVERIFY(rig.startAndOpen(3));
        if (byAdmin)
            emit rig.phone.phone->killServerRequested();
        else
            rig.server.kill();
        for (FakeChannel *channel : std::as_const(rig.tunnel.channels))
            QVERIFY(channel->wasClosed());
        QTRY_COMPARE(rig.finished.size(), 1);
        QCOMPARE(rig.finished.first().first().toInt(), 137);
        QCOMPARE(rig.phone.journal("server_stop").value(0).value("reason").toString(), QString("killed"));
    }

    void endsWhenThePcClosesTheVideoSocket()
    {
        ServerRig rig(serverCommand("scid=00000001 max_size=160"));
        QVERIFY(rig.startAndOpen(3));
        rig.channel(0)->close();
        QTRY_COMPARE(rig.finished.size(), 1);
        QCOMPARE(rig.finished.first().first().toInt(), 0);
        QVERIFY(rig.channel(1)->wasClosed());
        QVERIFY(rig.channel(2)->wasClosed());
    }

    void controlMessagesReachThePhone()
    {
        ServerRig rig(serverCommand("scid=00000001 max_size=160 audio=false"));
        QVERIFY(rig.startAndOpen(2));
        FakeChannel *control = rig.channel(1);
        QSignalSpy rotation(rig.phone.phone.get(), &Phone::rotationChanged);
        // Set clipboard "hi" with paste and sequence 5, then a touch split across two writes, then rotate.
        const QByteArray bytes = hex("09 0000000000000005 01 00000002 6869")
                                 + hex("02 00 FFFFFFFFFFFFFFFE 00000050 000000A0 00A0 0160 FFFF 00000001 00000001")
                                 + hex("0B");
        control->sendFromPc(bytes.left(20));
        control->sendFromPc(bytes.mid(20));
        QCOMPARE(rig.phone.phone->clipboard(), QString("hi"));
        QCOMPARE(rotation.size(), 1);
        QCOMPARE(rig.phone.phone->rotation(), 1);
        // Sequence 5 asked for an acknowledgement.
        QCOMPARE(control->written, hex("01 0000000000000005"));
        QCOMPARE(describeControl(rig.phone.journal("control")),
                 (QStringList{"clipboard 5 paste hi", "touch 0@80,160", "RotateDevice"}));
    }

    void sendsThePhoneClipboardToThePc()
    {
        ServerRig rig(serverCommand("scid=00000001 video=false audio=false"));
        QVERIFY(rig.startAndOpen(1));
        FakeChannel *control = rig.channel(0);
        QTRY_COMPARE(control->written.size(), 64);
        control->written.clear();
        rig.phone.phone->setClipboard("hello", false);
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
        ServerRig rig(serverCommand("scid=00000001 max_size=160 audio=false"));
        QVERIFY(rig.startAndOpen(2));
        rig.channel(1)->sendFromPc(hex("0B 63 64 65"));
        QVERIFY(rig.channel(1)->wasClosed());
        QCOMPARE(rig.phone.journal("control").size(), 1);
        QCOMPARE(rig.phone.journal("error").size(), 1);
        QCOMPARE(rig.phone.journal("error").first().value("source").toString(), QString("control"));
        // The video goes on.
        const qsizetype streamed = rig.channel(0)->written.size();
        QTRY_VERIFY(rig.channel(0)->written.size() > streamed);
        QVERIFY(rig.finished.isEmpty());
        QVERIFY(rig.channel(0)->isOpen());
    }
};

QTEST_MAIN(TestSimServer)
#include "tst_simserver.moc"
