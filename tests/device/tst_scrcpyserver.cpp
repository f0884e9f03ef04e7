#include "devicemessagereceiver.h"
#include "fakeadb.h"
#include "adbclient.h"
#include "scrcpyserver.h"
#include "serverparams.h"

#include <QTcpSocket>
#include <QtTest>

using Args = QStringList;

// The launch sequence and connection sorting, against a stand-in adb and local connections.
class TestScrcpyServer : public QObject
{
    Q_OBJECT

    FakeAdb m_adb;
    QTemporaryDir m_dir;

    static QTcpSocket *connectTo(quint16 port, QObject *owner)
    {
        auto *socket = new QTcpSocket(owner);
        socket->connectToHost(QHostAddress::LocalHost, port);
        socket->waitForConnected(2000);
        return socket;
    }

private slots:
    void initTestCase()
    {
        AdbClient::setProgram(m_adb.program());
        const QString server = m_dir.filePath("scrcpy-server");
        QFile file(server);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("jar");
        qputenv("KORVEL_SCRCPY_SERVER", server.toLocal8Bit());
    }
    void init() { m_adb.clear(); }

    void arguments_data()
    {
        QTest::addColumn<int>("maxSize");
        QTest::addColumn<int>("maxFps");
        QTest::addColumn<bool>("audio");
        QTest::addColumn<Args>("options");
        const QString head = "video_bit_rate=2000000 audio_codec=opus log_level=verbose ";
        const QString tail = "stay_awake=true scid=00001234 control=true video=true audio=";
        QTest::newRow("defaults") << 280 << 5 << false << (head + "max_size=280 max_fps=5 " + tail + "false").split(' ');
        QTest::newRow("no limits") << 0 << 0 << true << (head + tail + "true").split(' ');
        QTest::newRow("negative means no limit") << -1 << -5 << false << (head + tail + "false").split(' ');
    }

    void arguments()
    {
        QFETCH(int, maxSize);
        QFETCH(int, maxFps);
        QFETCH(bool, audio);
        QFETCH(Args, options);
        ServerParams params;
        params.setScid(0x1234);
        params.setDeviceSerial("SER");
        params.setMaxSize(maxSize);
        params.setMaxFps(maxFps);
        params.setAudio(audio);
        QCOMPARE(params.serverArguments(), Args({"-s", "SER", "shell", "CLASSPATH=/data/local/tmp/scrcpy-server.jar",
                                                 "app_process", "/", "com.genymobile.scrcpy.Server", "3.3.1"}) + options);
    }

    // The scid names the phone's socket: positive, eight hex digits.
    void scidIsPositiveAndFormattedLikeTheSocketName()
    {
        for (int i = 0; i < 50; ++i) {
            ServerParams params;
            QVERIFY(params.scid() >= 0);
            QVERIFY(QRegularExpression("^[0-9a-f]{8}$").match(params.scidText()).hasMatch());
        }
    }

    void startPushesListensTunnelsAndLaunches()
    {
        ServerParams params;
        params.setDeviceSerial("SER");
        params.setSocketName("scrcpy_" + params.scidText());
        ScrcpyServer server(nullptr, &params);
        QSignalSpy launched(&server, &ScrcpyServer::launched);
        server.start();
        QVERIFY(params.port() > 0);
        QTRY_COMPARE(launched.count(), 1);
        QTRY_COMPARE(m_adb.calls().size(), 3);
        const auto calls = m_adb.calls();
        QCOMPARE(calls[0], (Args{"-s", "SER", "push", qEnvironmentVariable("KORVEL_SCRCPY_SERVER"),
                                 "/data/local/tmp/scrcpy-server.jar"}));
        QCOMPARE(calls[1], (Args{"-s", "SER", "reverse", "localabstract:" + params.socketName(),
                                 "tcp:" + QString::number(params.port())}));
        QCOMPARE(calls[2], params.serverArguments());
    }

    void failedTunnelReportsStopped()
    {
        m_adb.addRule("-s SER reverse *", 1, {}, "error: more than one device");
        ServerParams params;
        params.setDeviceSerial("SER");
        ScrcpyServer server(nullptr, &params);
        QSignalSpy stopped(&server, &ScrcpyServer::stopped);
        QSignalSpy failed(&server, &ScrcpyServer::startFailed);
        server.start();
        QTRY_COMPARE(stopped.count(), 1);
        QCOMPARE(failed.count(), 1);
        QVERIFY2(failed.at(0).at(0).toString().contains("more than one device"), qPrintable(failed.at(0).at(0).toString()));
        QCOMPARE(stopped.at(0).at(0).toInt(), -1);
        QCOMPARE(stopped.at(0).at(1).value<QProcess::ExitStatus>(), QProcess::CrashExit);
    }

    void connectionsAreSortedByArrival_data()
    {
        QTest::addColumn<bool>("audio");
        QTest::addColumn<Args>("order");
        QTest::newRow("audio off") << false << Args{"video", "control"};
        QTest::newRow("audio on") << true << Args{"video", "audio", "control"};
    }

    void connectionsAreSortedByArrival()
    {
        QFETCH(bool, audio);
        QFETCH(Args, order);
        // The launched "server" waits, like a real one, until it is stopped.
        m_adb.addRule("-s SER shell CLASSPATH=*", 0, "", {}, 30);
        ServerParams params;
        params.setDeviceSerial("SER");
        params.setAudio(audio);
        ScrcpyServer server(nullptr, &params);
        Args seen;
        connect(&server, &ScrcpyServer::videoSocketConnected, this, [&] { seen << "video"; });
        connect(&server, &ScrcpyServer::audioSocketConnected, this, [&] { seen << "audio"; });
        connect(&server, &ScrcpyServer::controlSocketConnected, this, [&] { seen << "control"; });
        server.start();

        QObject owner;
        QList<QTcpSocket *> clients;
        for (int i = 0; i < order.size(); ++i) {
            clients << connectTo(params.port(), &owner);
            QTRY_COMPARE(seen.size(), i + 1);
        }
        QCOMPARE(seen, order);
        // A connection beyond the requested streams is closed at once.
        QTcpSocket *extra = connectTo(params.port(), &owner);
        QTRY_COMPARE(extra->state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(seen, order);
        QVERIFY(server.videoSocket());
        QVERIFY(server.controlSocket());
        QVERIFY(server.deviceMessageReceiver());
        QCOMPARE(server.audioSocket() != nullptr, audio);

        // The phone closing the control socket drops it and its receiver.
        QSignalSpy controlGone(&server, &ScrcpyServer::controlSocketDisconnected);
        clients.at(audio ? 2 : 1)->close();
        QTRY_COMPARE(controlGone.count(), 1);
        QVERIFY(!server.controlSocket());
        QVERIFY(!server.deviceMessageReceiver());
        server.stop();
    }

    void stopRemovesOnlyThisSessionsServerAndTunnel()
    {
        m_adb.addRule("-s SER shell CLASSPATH=*", 0, "", {}, 30);
        ServerParams params;
        params.setDeviceSerial("SER");
        params.setSocketName("scrcpy_" + params.scidText());
        {
            ScrcpyServer server(nullptr, &params);
            QSignalSpy launched(&server, &ScrcpyServer::launched);
            server.start();
            QTRY_COMPARE(launched.count(), 1);
            server.stop();
            server.stop();
        }
        const Args kill{"-s", "SER", "shell", "pkill", "-f", "scid=" + params.scidText()};
        const Args unTunnel{"-s", "SER", "reverse", "--remove", "localabstract:" + params.socketName()};
        QTRY_VERIFY(m_adb.calls().contains(unTunnel));
        QCOMPARE(m_adb.calls().count(kill), 1);
        QCOMPARE(m_adb.calls().count(unTunnel), 1);
    }
};

QTEST_MAIN(TestScrcpyServer)
#include "tst_scrcpyserver.moc"
