// The phone's wire formats and parsers on their own: adb messages, shell v2 packets, shell
// lines, the property set, the server's launch line and the control messages, which phonesim reads
// back from the same table that Korvel's encoder is held to.
#include "adbmessage.h"
#include "commandlineoptions.h"
#include "controlmessagedecoder.h"
#include "controlmessages.h"
#include "phone.h"
#include "phoneproperties.h"
#include "shellline.h"
#include "shellpacket.h"
#include "testpattern.h"

#include <QJsonDocument>
#include <QTest>
#include <QtEndian>

namespace {
QByteArray json(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

CommandLineOptions launchLine(const QString &tail)
{
    return CommandLineOptions::parse("CLASSPATH=/data/local/tmp/scrcpy-server.jar app_process / com.genymobile.scrcpy.Server "
                                     + tail);
}
} // namespace

class TestPhoneSimWire : public QObject
{
    Q_OBJECT

private slots:
    void messageHeaderLayout()
    {
        // Command, two arguments, length, byte sum and the command's complement, little-endian.
        QCOMPARE(AdbMessage::encode(AdbMessage::Wrte, 3, 9, "abc").toHex(' '),
                 QByteArray::fromHex("57525445 03000000 09000000 03000000 26010000 A8ADABBA 616263").toHex(' '));
    }

    void messageParseWaitsForWholeMessage()
    {
        const QByteArray whole = AdbMessage::encode(AdbMessage::Open, 1, 0, QByteArray("shell:ls", 9))
            + AdbMessage::encode(AdbMessage::Okay, 2, 1);
        AdbMessage message;
        for (int cut : {0, 10, 24, 30}) {
            QByteArray partial = whole.left(cut);
            QCOMPARE(AdbMessage::parse(partial, 4096, &message), AdbMessage::ParseResult::Incomplete);
            QCOMPARE(partial.size(), cut);
        }
        QByteArray buffer = whole;
        QCOMPARE(AdbMessage::parse(buffer, 4096, &message), AdbMessage::ParseResult::Complete);
        QCOMPARE(message.command, quint32(AdbMessage::Open));
        QCOMPARE(message.data, QByteArray("shell:ls", 9));
        QCOMPARE(AdbMessage::parse(buffer, 4096, &message), AdbMessage::ParseResult::Complete);
        QCOMPARE(message.command, quint32(AdbMessage::Okay));
        QCOMPARE(message.arg0, quint32(2));
        QVERIFY(buffer.isEmpty());
    }

    void messageParseRejects_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QByteArray badMagic = AdbMessage::encode(AdbMessage::Cnxn, 0, 0);
        badMagic[20] = char(badMagic[20] ^ 1);
        QTest::newRow("bad magic") << badMagic;
        QByteArray tooLong = AdbMessage::encode(AdbMessage::Wrte, 1, 1);
        qToLittleEndian<quint32>(4097, tooLong.data() + 12);
        QTest::newRow("length over maximum") << tooLong;
        QTest::newRow("unknown command") << AdbMessage::encode(0x41414141, 0, 0);
        QTest::newRow("text") << QByteArray("this is not an adb message at all");
    }

    void messageParseRejects()
    {
        QFETCH(QByteArray, bytes);
        AdbMessage message;
        QCOMPARE(AdbMessage::parse(bytes, 4096, &message), AdbMessage::ParseResult::Malformed);
    }

    void shellPacketRoundTrip()
    {
        QByteArray buffer = ShellPacket::encode(ShellPacket::Stdout, "out") + ShellPacket::exitPacket(127);
        QCOMPARE(buffer.left(5), QByteArray("\x01\x03\x00\x00\x00", 5));
        quint8 id = 0;
        QByteArray data;
        QCOMPARE(ShellPacket::take(buffer, &id, &data), ShellPacket::TakeResult::Complete);
        QCOMPARE(id, quint8(ShellPacket::Stdout));
        QCOMPARE(data, QByteArray("out"));
        QByteArray half = buffer.left(5);
        QCOMPARE(ShellPacket::take(half, &id, &data), ShellPacket::TakeResult::Incomplete);
        QCOMPARE(ShellPacket::take(buffer, &id, &data), ShellPacket::TakeResult::Complete);
        QCOMPARE(id, quint8(ShellPacket::Exit));
        QCOMPARE(data, QByteArray(1, char(127)));
        QByteArray absurd("\x00\xff\xff\xff\xff", 5);
        QCOMPARE(ShellPacket::take(absurd, &id, &data), ShellPacket::TakeResult::Malformed);
    }

    void shellLineSplits_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("flat");   // joiner then words, per command, "|" between commands

        // Plain words are read through the real adb in tst_phonesimadb.
        QTest::newRow("sequence without spaces") << "a;b && c||d"
                                                 << QStringList{"", "a", "|", ";", "b", "|", "&&", "c", "|", "||", "d"};
        QTest::newRow("quotes") << "echo 'a b' \"c \\\"d\\\"\" e\\ f"
                                << QStringList{"", "echo", "a b", "c \"d\"", "e f"};
        QTest::newRow("operators in quotes") << "echo 'x;y&&z'" << QStringList{"", "echo", "x;y&&z"};
        QTest::newRow("empty quoted word") << "echo ''" << QStringList{"", "echo", ""};
    }

    void shellLineSplits()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, flat);
        bool ok = false;
        QStringList actual;
        const QList<ShellLine::Command> commands = ShellLine::parse(line, &ok);
        QVERIFY(ok);
        for (const ShellLine::Command &command : commands) {
            if (!actual.isEmpty())
                actual << "|";
            actual << command.joiner << command.words;
        }
        QCOMPARE(actual, flat);

        ShellLine::parse("echo 'open", &ok);
        QVERIFY(!ok);
    }

    void propertiesCoverWhatKorvelReads()
    {
        PhoneProfile profile;
        profile.model = "Pixel 7";
        profile.manufacturer = "Google";
        profile.product = "panther";
        profile.device = "panther";
        profile.androidVersion = "13";
        profile.screenSize = QSize(1080, 2400);
        profile.wifiAddress = "127.0.0.12";
        const QMap<QString, QString> off = PhoneProperties::build(profile, 16001, 0);
        for (const char *key : {"ro.product.manufacturer", "ro.product.model", "ro.boot.ddr_size", "ro.build.version.release",
                                "ro.serialno", "ro.build.fingerprint", "ro.csc.country_code", "ro.csc.sales_code",
                                "gsm.operator.alpha", "sys.usb.config", "ro.kernel.qemu", "ro.product.name",
                                "ro.build.version.sdk", "dhcp.wlan0.ipaddress"})
            QVERIFY2(!off.value(key).isEmpty(), key);
        QCOMPARE(off.value("ro.kernel.qemu"), QString("0"));
        QCOMPARE(off.value("dhcp.wlan0.ipaddress"), QString("127.0.0.12"));
        QVERIFY(!off.contains("service.adb.tcp.port"));
        QCOMPARE(PhoneProperties::build(profile, 16001, 5555).value("service.adb.tcp.port"), QString("5555"));
        // Stable per port, different between ports.
        QCOMPARE(off.value("ro.serialno"), PhoneProperties::hardwareSerial(16001));
        QVERIFY(PhoneProperties::hardwareSerial(16001) != PhoneProperties::hardwareSerial(16002));
    }

    void readsTheLaunchLineOfThePc()
    {
        const auto options = launchLine("3.3.1 video_bit_rate=2000000 audio_codec=opus log_level=verbose max_size=280 "
                                        "max_fps=5 stay_awake=true scid=00001234 control=true video=true audio=false");
        QVERIFY2(options.ok(), qPrintable(options.error()));
        QCOMPARE(options.classPath, QString("/data/local/tmp/scrcpy-server.jar"));
        // Everything else as the phone journals it when the server starts.
        QCOMPARE(json(options.toJson()),
                 QByteArray(R"({"audio":false,"audio_codec":"opus","control":true,"log_level":"verbose","max_fps":5,)"
                            R"("max_size":280,"scid":"00001234","socket":"scrcpy_00001234","stay_awake":true,)"
                            R"("version":"3.3.1","video":true,"video_bit_rate":2000000})"));
    }

    // Korvel leaves out the limits it does not want.
    void launchLineDefaults()
    {
        const auto options = launchLine("3.3.1");
        QVERIFY(options.ok());
        QCOMPARE(options.maxSize, 0);
        QCOMPARE(options.maxFps, 0);
        // A scid keeps only its low 31 bits.
        QCOMPARE(launchLine("3.3.1 scid=ffffffff").socketName(), QString("scrcpy_7fffffff"));
    }

    // The version's message is tst_simserver's.
    void launchLineErrors_data()
    {
        QTest::addColumn<QString>("tail");
        QTest::addColumn<QString>("message");
        QTest::newRow("no version") << "" << "Missing client version";
        QTest::newRow("unknown option") << "3.3.1 crop=1:2:3:4" << "Unknown server option: crop";
        QTest::newRow("bad number") << "3.3.1 max_size=big" << "For input string: \"big\"";
        QTest::newRow("bad boolean") << "3.3.1 audio=yes" << "Invalid boolean for audio";
        QTest::newRow("bad scid") << "3.3.1 scid=xyz" << "Invalid scid";
        QTest::newRow("no equals") << "3.3.1 video" << "Invalid key=value pair";
        QTest::newRow("other audio codec") << "3.3.1 audio_codec=aac" << "Unsupported audio codec: aac";
        QTest::newRow("log level") << "3.3.1 log_level=loud" << "Invalid log level: loud";
    }

    void launchLineErrors()
    {
        QFETCH(QString, tail);
        QFETCH(QString, message);
        const auto options = launchLine(tail);
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
        QCOMPARE(TestPattern::videoSize(screen, maxSize), expected);
    }

    void readsEachControlMessageOfTheTable_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QJsonObject>("decoded");
        for (const ControlMessageCase &c : controlMessageCases())
            QTest::newRow(c.name) << c.bytes << c.decoded;
    }

    void readsEachControlMessageOfTheTable()
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

    void readsTheControlTableAsOneStream()
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

    void rejectsControlGarbage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("decodedBefore");
        QTest::newRow("unknown type 0x63") << QByteArray::fromHex("63 00 00") << 0;
        QTest::newRow("unknown type 0xff after a rotate") << QByteArray::fromHex("0B FF") << 1;
        QTest::newRow("type 12") << QByteArray::fromHex("0C 00") << 0;
        QTest::newRow("huge text length") << QByteArray::fromHex("01 7FFFFFFF 41") << 0;
        QTest::newRow("huge clipboard length") << QByteArray::fromHex("09 0000000000000000 00 00200000") << 0;
    }

    void rejectsControlGarbage()
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

QTEST_GUILESS_MAIN(TestPhoneSimWire)
#include "tst_phonesimwire.moc"
