#include "annexbfileplayer.h"
#include "h264encoder.h"
#include "mediastreamreader.h"
#include "simserver.h"
#include "simtestsupport.h"
#include "testpattern.h"

#include <QtTest>

// The phone's media sockets packet by packet, and its pictures through Korvel's own decoder. That
// whole sessions show them, at the size and with the sound expected, is proven in tests/device.
class TestSimServerMedia : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private:
    static QByteArray hex(const char *text) { return QByteArray::fromHex(text); }
    static MediaStream video(const ServerRig &rig) { return MediaStream::parse(rig.channel(0)->written, true, true); }
    static int nalType(const QByteArray &annexB) { return quint8(annexB[4]) & 0x1f; }

    // The index of the configuration packet that starts each encoder run.
    static QList<int> configIndexes(const ServerRig &rig)
    {
        QList<int> indexes;
        const MediaStream stream = video(rig);
        for (int i = 0; i < stream.packets.size(); ++i) {
            if (stream.packets[i].config())
                indexes << i;
        }
        return indexes;
    }

private slots:
    void initTestCase() { av_log_set_level(AV_LOG_ERROR); }

    void videoStartsWithItsConfigurationAndRotationRestartsIt()
    {
        ServerRig rig(serverCommand("scid=00000001 audio=false max_size=800"));
        QVERIFY(rig.startAndOpen(2));
        QTRY_VERIFY(video(rig).packets.size() >= 3);
        const MediaStream stream = video(rig);
        QCOMPARE(stream.name, QByteArray("Pixel Sim"));
        QCOMPARE(stream.codec, QByteArray("h264"));
        QCOMPARE(stream.size, QSize(360, 800));
        // The configuration packet comes first and holds SPS then PPS in Annex B form.
        const MediaPacket &config = stream.packets[0];
        QVERIFY(config.config() && !config.keyFrame());
        QCOMPARE(nalType(config.payload), 7);
        QVERIFY(config.payload.contains(QByteArray("\x00\x00\x00\x01\x68", 5)));
        // Then a key frame, then ordinary frames with rising timestamps.
        QVERIFY(!stream.packets[1].config() && stream.packets[1].keyFrame());
        QVERIFY(!stream.packets[2].keyFrame());
        QVERIFY(stream.packets[2].pts() > stream.packets[1].pts());

        // Rotated: a new configuration and a key frame follow; the stream header is not repeated.
        rig.channel(1)->sendFromPc(hex("0B"));
        QCOMPARE(rig.phone.phone->rotation(), 1);
        QTRY_COMPARE(configIndexes(rig).size(), 2);
        const int restart = configIndexes(rig).last();
        QTRY_VERIFY(video(rig).packets.size() > restart + 1);
        QVERIFY(video(rig).packets[restart + 1].keyFrame());
        QCOMPARE(video(rig).size, QSize(360, 800));
    }

    void resetVideoSendsConfigAndKeyFrame()
    {
        ServerRig rig(serverCommand("scid=00000001 audio=false max_size=160"));
        QVERIFY(rig.startAndOpen(2));
        QTRY_VERIFY(video(rig).packets.size() >= 3);
        const int before = int(video(rig).packets.size());
        rig.channel(1)->sendFromPc(hex("11"));
        // Pictures of the replaced encoder still on their way are dropped: the configuration
        // comes right after what had arrived, then a key frame.
        QTRY_VERIFY(video(rig).packets.size() >= before + 2);
        QVERIFY(video(rig).packets[before].config());
        QVERIFY(video(rig).packets[before + 1].keyFrame());
    }

    void cornersShowThePhoneColourAndTouchesShowADot()
    {
        ServerRig rig(serverCommand("scid=00000001 audio=false max_size=400"));
        QVERIFY(rig.startAndOpen(2));
        QTRY_VERIFY(video(rig).packets.size() >= 2); // a picture before the touch
        // A finger held down in the middle of the screen, as the PC sends it from a 180x400 view.
        rig.channel(1)->sendFromPc(hex("02 00 0000000000000000 0000005A 000000C8 00B4 0190 FFFF 00000001 00000001"));
        const qsizetype packetsAtTouch = video(rig).packets.size();
        QTRY_VERIFY(video(rig).packets.size() >= packetsAtTouch + 2);
        const QList<QImage> pictures = decodeVideo(rig.channel(0)->written);
        QVERIFY(pictures.size() >= 3);
        const QImage first = pictures.first();
        const QImage last = pictures.last();
        QCOMPARE(first.size(), QSize(184, 400));
        // Luma of the phone's colour as the encoder's BT.601 limited-range conversion gives it.
        const QColor colour = TestPattern::backgroundColor(0);
        const int backgroundLuma = 16 + (65 * colour.red() + 129 * colour.green() + 25 * colour.blue()) / 256;
        QVERIFY(qAbs(qGray(first.pixel(2, 2)) - backgroundLuma) < 8);
        QVERIFY(qAbs(qGray(first.pixel(first.width() / 2, first.height() / 2)) - backgroundLuma) < 8);
        QVERIFY(qGray(last.pixel(last.width() / 2, last.height() / 2)) > 200);
    }

    void audioIsOpusInTwentyMillisecondPackets()
    {
        ServerRig rig(serverCommand("scid=00000001 video=false control=false audio=true"));
        QVERIFY(rig.startAndOpen(1));
        QTRY_VERIFY(MediaStream::parse(rig.channel(0)->written, true, false).packets.size() >= 3);
        const MediaStream stream = MediaStream::parse(rig.channel(0)->written, true, false);
        QCOMPARE(stream.codec, QByteArray("opus"));
        QVERIFY(stream.packets[0].config());
        QVERIFY(stream.packets[0].payload.startsWith("OpusHead"));
        QVERIFY(!stream.packets[1].config());
        QCOMPARE(stream.packets[2].pts() - stream.packets[1].pts(), 20000);
    }

    void playsAStreamFileInALoop()
    {
        // Three pictures from the encoder, the first a key frame, written as one Annex B file.
        H264Encoder encoder;
        QString error;
        QVERIFY2(encoder.open(QSize(64, 48), 500000, 30, &error), qPrintable(error));
        QByteArray file = encoder.config();
        for (int i = 0; i < 3; ++i) {
            QImage image(64, 48, QImage::Format_RGB32);
            image.fill(QColor(40 * i, 80, 120));
            QList<H264Encoder::Packet> packets;
            QVERIFY(encoder.encode(image, i * 33333, &packets));
            for (const H264Encoder::Packet &packet : std::as_const(packets))
                file += packet.data;
        }
        QTemporaryDir clipDir;
        QFile out(clipDir.filePath("clip.h264"));
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write(file) == file.size());
        out.close();

        ServerRig rig(serverCommand("scid=00000001 audio=false control=false max_size=800"), true, out.fileName());
        QVERIFY(rig.startAndOpen(1));
        QTRY_VERIFY_WITH_TIMEOUT(video(rig).packets.size() >= 8, 10000);
        const MediaStream stream = video(rig);
        QCOMPARE(stream.size, QSize(64, 48));
        QVERIFY(stream.packets[0].config());
        QCOMPARE(nalType(stream.packets[0].payload), 7);
        // Key frames where the file has IDR pictures: the 1st of every 3 frames.
        for (int i = 1; i < 8; ++i) {
            QVERIFY(!stream.packets[i].config());
            QCOMPARE(stream.packets[i].keyFrame(), (i - 1) % 3 == 0);
            if (i > 1)
                QVERIFY(stream.packets[i].pts() > stream.packets[i - 1].pts());
        }
        const QList<QImage> pictures = decodeVideo(rig.channel(0)->written);
        QVERIFY(pictures.size() >= 6);
        QCOMPARE(pictures.first().size(), QSize(64, 48));
    }

    void splitsAnnexBIntoAccessUnits()
    {
        // SPS, PPS, IDR slice (3-byte start code), then a P slice opening the next picture, then
        // a second slice of that picture (first_mb_in_slice != 0) with trailing zero bytes.
        const QByteArray stream = hex("00000001 6742 00000001 68CE 000001 6588 00000001 4180 00000001 4140 0000");
        const QList<QByteArray> nals = AnnexBFilePlayer::splitNalUnits(stream);
        QCOMPARE(nals, QList<QByteArray>({hex("6742"), hex("68CE"), hex("6588"), hex("4180"), hex("4140")}));
        QByteArray config;
        const QList<AnnexBFilePlayer::AccessUnit> units = AnnexBFilePlayer::groupAccessUnits(nals, &config);
        QCOMPARE(config, hex("00000001 6742 00000001 68CE"));
        QCOMPARE(units.size(), 2);
        QCOMPARE(units[0].data, hex("00000001 6588"));
        QVERIFY(units[0].keyFrame);
        QCOMPARE(units[1].data, hex("00000001 4180 00000001 4140"));
        QVERIFY(!units[1].keyFrame);
    }

    void rejectsAFileWithoutPictures()
    {
        QTemporaryDir dir;
        QFile out(dir.filePath("noise.h264"));
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write("this is not video at all");
        out.close();
        AnnexBFilePlayer player;
        QString error;
        QVERIFY(!player.load(out.fileName(), &error));
        QVERIFY(error.contains("noise.h264"));
        QVERIFY(!player.load(dir.filePath("missing.h264"), &error));
    }
};

QTEST_MAIN(TestSimServerMedia)
#include "tst_simservermedia.moc"
