#include "commandlineoptions.h"
#include "testpattern.h"

#include <QJsonDocument>
#include <QtTest>

class TestCommandLineOptions : public QObject
{
    Q_OBJECT

private slots:
    void readsTheLaunchLineOfThePc()
    {
        const auto options = CommandLineOptions::parse(
            "CLASSPATH=/data/local/tmp/scrcpy-server.jar app_process / com.genymobile.scrcpy.Server 3.3.1 "
            "video_bit_rate=2000000 audio_codec=opus log_level=verbose max_size=280 max_fps=5 stay_awake=true "
            "scid=00001234 control=true video=true audio=false");
        QVERIFY2(options.ok(), qPrintable(options.error()));
        QCOMPARE(options.classPath, QString("/data/local/tmp/scrcpy-server.jar"));
        // Everything else as the phone journals it when the server starts.
        QCOMPARE(QJsonDocument(options.toJson()).toJson(QJsonDocument::Compact),
                 QByteArray(R"({"audio":false,"audio_codec":"opus","control":true,"log_level":"verbose","max_fps":5,)"
                            R"("max_size":280,"scid":"00001234","socket":"scrcpy_00001234","stay_awake":true,)"
                            R"("version":"3.3.1","video":true,"video_bit_rate":2000000})"));
    }

    void leavesDefaultsForOptionsNotGiven()
    {
        const auto options = CommandLineOptions::parse("CLASSPATH=/x.jar app_process / com.genymobile.scrcpy.Server 3.3.1");
        QVERIFY(options.ok());
        QCOMPARE(options.maxSize, 0);
        QCOMPARE(options.maxFps, 0);
        QVERIFY(options.video && options.audio && options.control);
        QCOMPARE(options.socketName(), QString("scrcpy"));
        // A scid keeps only its low 31 bits.
        const auto wide = CommandLineOptions::parse("CLASSPATH=/x.jar app_process / com.genymobile.scrcpy.Server 3.3.1 scid=ffffffff");
        QVERIFY(wide.ok());
        QCOMPARE(wide.socketName(), QString("scrcpy_7fffffff"));
    }

    void reportsErrors_data()
    {
        QTest::addColumn<QString>("tail");
        QTest::addColumn<QString>("message");
        QTest::newRow("version") << "3.2 video=true" << "The server version (3.3.1) does not match the client (3.2)";
        QTest::newRow("no version") << "" << "Missing client version";
        QTest::newRow("unknown option") << "3.3.1 crop=1:2:3:4" << "Unknown server option: crop";
        QTest::newRow("bad number") << "3.3.1 max_size=big" << "For input string: \"big\"";
        QTest::newRow("bad boolean") << "3.3.1 audio=yes" << "Invalid boolean for audio";
        QTest::newRow("bad scid") << "3.3.1 scid=xyz" << "Invalid scid";
        QTest::newRow("no equals") << "3.3.1 video" << "Invalid key=value pair";
        QTest::newRow("other audio codec") << "3.3.1 audio_codec=aac" << "Unsupported audio codec: aac";
        QTest::newRow("log level") << "3.3.1 log_level=loud" << "Invalid log level: loud";
    }

    void reportsErrors()
    {
        QFETCH(QString, tail);
        QFETCH(QString, message);
        const auto options = CommandLineOptions::parse(
            "CLASSPATH=/x.jar app_process / com.genymobile.scrcpy.Server " + tail);
        QVERIFY(!options.ok());
        QVERIFY2(options.error().contains(message), qPrintable(options.error()));
    }

    void videoSize_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<int>("maxSize");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("no limit") << QSize(1080, 2400) << 0 << QSize(1080, 2400);
        QTest::newRow("800") << QSize(1080, 2400) << 800 << QSize(360, 800);
        QTest::newRow("280") << QSize(1080, 2400) << 280 << QSize(128, 280);
        QTest::newRow("landscape 800") << QSize(2400, 1080) << 800 << QSize(800, 360);
        QTest::newRow("limit above screen") << QSize(720, 1280) << 1920 << QSize(720, 1280);
        QTest::newRow("odd screen") << QSize(1079, 2341) << 0 << QSize(1072, 2336);
        QTest::newRow("limit not multiple of 8") << QSize(1080, 1920) << 1001 << QSize(560, 1000);
    }

    void videoSize()
    {
        QFETCH(QSize, screen);
        QFETCH(int, maxSize);
        QFETCH(QSize, expected);
        const QSize size = TestPattern::videoSize(screen, maxSize);
        QCOMPARE(size, expected);
        QCOMPARE(size.width() % 8, 0);
        QCOMPARE(size.height() % 8, 0);
    }
};

QTEST_GUILESS_MAIN(TestCommandLineOptions)
#include "tst_commandlineoptions.moc"
