// The phone's wire formats and parsers on their own: adb messages, shell v2 packets, command
// lines, the reverse table's answers and the property set.
#include "adbmessage.h"
#include "phone.h"
#include "phoneproperties.h"
#include "reversetable.h"
#include "shellline.h"
#include "shellpacket.h"

#include <QTest>
#include <QtEndian>

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

    // Listing, removing and adb's reading of the answers are proven through the real adb; these
    // are the answers it never provokes.
    void reverseTableAnswers()
    {
        ReverseTable table;
        bool changed = false;
        QCOMPARE(table.handle("forward:localabstract:scrcpy_1;tcp:5000", "host-1", &changed), QByteArray("OKAY"));
        QVERIFY(changed);
        QCOMPARE(table.target("localabstract:scrcpy_1"), QString("tcp:5000"));
        QCOMPARE(table.handle("forward:norebind:localabstract:scrcpy_1;tcp:6000", "host-1"),
                 QByteArray("FAIL001dcannot rebind existing socket"));
        QCOMPARE(table.handle("forward:localabstract:scrcpy_1;tcp:6000", "host-1"), QByteArray("OKAY"));
        QCOMPARE(table.target("localabstract:scrcpy_1"), QString("tcp:6000"));
        QCOMPARE(table.handle("list-forward", "host-1"), QByteArray("0027host-1 localabstract:scrcpy_1 tcp:6000\n"));
        QVERIFY(table.handle("forward:localabstract:x", "host-1").startsWith("FAIL"));
        QVERIFY(table.handle("forward:localabstract:;tcp:1", "host-1").startsWith("FAIL"));
        QCOMPARE(table.size(), 1);
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
};

QTEST_GUILESS_MAIN(TestPhoneSimWire)
#include "tst_phonesimwire.moc"
