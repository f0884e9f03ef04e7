#include "fakesocket.h"
#include "streambuilder.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QtTest>

extern "C" {
#include <libavutil/log.h>
}

using namespace StreamBuilder;

namespace {

// A demuxer on a fake socket whose two sinks write to one shared log.
struct Rig
{
    explicit Rig(bool withRecorder = true) : demuxer(&socket, withRecorder ? &recorder : nullptr, &decoder) {}
    FakeSocket socket;
    QStringList log;
    RecordingSink recorder{"recorder", &log};
    RecordingSink decoder{"decoder", &log};
    VideoDemuxer demuxer;
};

QByteArray h264Header()
{
    return header("phone", "h264", 1080, 1920);
}

QByteArray startCoded(const QByteArray &nal)
{
    return QByteArray::fromHex("00000001") + nal;
}

QList<SeenPacket> feedInPieces(const QList<QByteArray> &pieces)
{
    Rig rig;
    for (const QByteArray &piece : pieces)
        rig.socket.feed(piece);
    return rig.decoder.packets;
}

} // namespace

class TestVideoDemuxer : public QObject
{
    Q_OBJECT

private slots:
    // Garbage payloads make the H.264 decoder complain; only its fatal messages are of interest.
    void initTestCase() { av_log_set_level(AV_LOG_FATAL); }

    // How the header arrives, in pieces or with packets behind it, is anySplitGivesSamePackets' part.
    void headerNamesThePhoneAndDescribesTheStream_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("expected");
        const QByteArray full(64, 'A');
        QTest::newRow("64 bytes, no NUL") << full << QString::fromLatin1(full);
        QTest::newRow("bytes after the first NUL ignored")
            << (QByteArray("ab") + QByteArray(1, '\0') + QByteArray("cd").leftJustified(61, '\0')) << QStringLiteral("ab");
        QTest::newRow("UTF-8") << QByteArray("Téléphone").leftJustified(64, '\0') << QStringLiteral("Téléphone");
    }

    void headerNamesThePhoneAndDescribesTheStream()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, expected);
        Rig rig;
        QCOMPARE(name.size(), 64);
        rig.socket.feed(name + QByteArray("h264") + QByteArray::fromHex("0000043800000780"));
        QCOMPARE(rig.demuxer.deviceName(), expected);
        QCOMPARE(rig.demuxer.codecId(), QByteArray("h264"));
        QCOMPARE(QSize(rig.demuxer.width(), rig.demuxer.height()), QSize(1080, 1920));
        // Every sink is opened once with the codec and the announced size.
        const QList<SeenStream> opened{{AV_CODEC_ID_H264, QSize(1080, 1920)}};
        QCOMPARE(rig.recorder.streams, opened);
        QCOMPARE(rig.decoder.streams, opened);
    }

    void sizeLimits_data()
    {
        QTest::addColumn<quint32>("size");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("0 dropped") << 0u << false;
        QTest::newRow("8388608 accepted") << 8388608u << true;
        QTest::newRow("8388609 dropped") << 8388609u << false;
        QTest::newRow("0xFFFFFFFF dropped") << 0xFFFFFFFFu << false;
    }

    void sizeLimits()
    {
        QFETCH(quint32, size);
        QFETCH(bool, accepted);
        Rig rig;
        // A rejected header is dropped alone and the following bytes are read as the next header.
        const QByteArray next = startCoded("\x65\xAA\xBB");
        rig.socket.feed(h264Header() + packetHeader(0x10, size) + QByteArray(accepted ? int(size) : 0, '\0')
                        + packet(0x20, next));
        QCOMPARE(rig.decoder.packets.size(), accepted ? 2 : 1);
        if (accepted)
            QCOMPARE(rig.decoder.packets[0].data.size(), int(size));
        QCOMPARE(rig.decoder.packets.last().pts, 0x20);
        QCOMPARE(rig.decoder.packets.last().data, next);
    }

    void packetBytesAndTimes_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<quint64>("ptsAndFlags");
        QTest::addColumn<QByteArray>("expected");
        QTest::addColumn<qint64>("pts");
        QTest::addColumn<bool>("key");
        auto hex = [](const char *h) { return QByteArray::fromHex(h); };
        auto row = [&](const char *name, const char *payload, quint64 ptsAndFlags, const char *expected, qint64 pts,
                       bool key) { QTest::newRow(name) << hex(payload) << ptsAndFlags << hex(expected) << pts << key; };
        // Start codes: the payload goes out as sent, or with 00 00 00 01 put in front.
        row("4-byte start code", "0000000165AABB", 1, "0000000165AABB", 1, false);
        row("3-byte start code", "00000165AABB", 1, "00000165AABB", 1, false);
        row("three zeros, any 4th byte", "0000000765AABB", 1, "0000000765AABB", 1, false);
        row("no start code", "25B8010203", 1, "0000000125B8010203", 1, false);
        row("00 00 02 is not a start code", "0000026501", 1, "000000010000026501", 1, false);
        row("4 bytes never prefixed", "25B80102", 1, "25B80102", 1, false);
        // The top two bits are the config and key flags; the other 62 are the time.
        const qint64 none = AV_NOPTS_VALUE;
        row("config", "00000001650000", 0x8000000000000000, "00000001650000", none, false);
        row("key frame", "00000001650000", 0x4000000000000F00, "00000001650000", 3840, true);
        row("config and key", "00000001650000", 0xC000000000000000, "00000001650000", none, true);
        row("plain", "00000001650000", 1000000, "00000001650000", 1000000, false);
        row("largest time", "00000001650000", 0x3FFFFFFFFFFFFFFF, "00000001650000", 0x3FFFFFFFFFFFFFFF, false);
    }

    void packetBytesAndTimes()
    {
        QFETCH(QByteArray, payload);
        QFETCH(quint64, ptsAndFlags);
        QFETCH(QByteArray, expected);
        QFETCH(qint64, pts);
        QFETCH(bool, key);
        Rig rig;
        rig.socket.feed(h264Header() + packet(ptsAndFlags, payload));
        QCOMPARE(rig.recorder.packets, (QList<SeenPacket>{{expected, pts, pts, key}}));
        QCOMPARE(rig.decoder.packets, rig.recorder.packets);
    }

    void anySplitGivesSamePackets()
    {
        // Config, key, prefixed, tiny, an invalid size header and a large packet.
        const QByteArray bytes = header("phone", "h264", 720, 1280)
                                 + packet(ConfigFlag, QByteArray::fromHex("0000000167640028ACD9400000000168EBE3CB"))
                                 + packet(KeyFlag | 1000, startCoded(QByteArray(300, '\x42')))
                                 + packet(34333, QByteArray::fromHex("41E0AA55CC")) + packetHeader(5, 0)
                                 + packet(67666, QByteArray::fromHex("01020304")) + packet(100999, QByteArray(1000, '\x07'));
        const QList<SeenPacket> reference = feedInPieces({bytes});
        QCOMPARE(reference.size(), 5);
        for (int split = 1; split < bytes.size(); ++split) {
            if (feedInPieces({bytes.left(split), bytes.mid(split)}) != reference)
                QFAIL(qPrintable(QStringLiteral("different packets when split at byte %1").arg(split)));
        }
        QList<QByteArray> single;
        for (char c : bytes)
            single.append(QByteArray(1, c));
        QCOMPARE(feedInPieces(single), reference);
    }

    void atMost200PacketsPerRead()
    {
        Rig rig;
        QByteArray bytes = h264Header();
        for (int i = 0; i < 250; ++i)
            bytes += packet(quint64(i), startCoded("\x41\x01"));
        rig.socket.feed(bytes);
        QCOMPARE(rig.recorder.packets.size(), 200);
        QCOMPARE(rig.decoder.packets.size(), 200);
        // The rest waits for the next readyRead, even with the event loop running.
        QCoreApplication::processEvents();
        QCOMPARE(rig.decoder.packets.size(), 200);
        rig.socket.feed(QByteArray());
        QCOMPARE(rig.recorder.packets.size(), 250);
        QCOMPARE(rig.decoder.packets.size(), 250);
        for (int i = 0; i < 250; ++i)
            QCOMPARE(rig.decoder.packets[i].pts, qint64(i));
    }

    void unknownCodecStillFeedsSinks()
    {
        Rig rig;
        QByteArray bytes = header("phone", "abcd", 1080, 1920);
        for (int i = 0; i < 3; ++i)
            bytes += packet(quint64(i), startCoded("\x41\x01"));
        rig.socket.feed(bytes);
        QVERIFY(rig.demuxer.isHeaderParsed());
        QCOMPARE(rig.decoder.streams, (QList<SeenStream>{{AV_CODEC_ID_NONE, QSize(1080, 1920)}}));
        QCOMPARE(rig.demuxer.codecId(), QByteArray("abcd"));
        // The unknown codec ends that read; the packets follow on the next one.
        QCOMPARE(rig.recorder.packets.size(), 0);
        rig.socket.feed(QByteArray());
        QCOMPARE(rig.recorder.packets.size(), 3);
        QCOMPARE(rig.decoder.packets.size(), 3);
        // The header is never parsed again.
        rig.socket.feed(h264Header());
        QCOMPARE(rig.decoder.streams.size(), 1);
    }

    void insertedSinkTakesItsPlace_data()
    {
        QTest::addColumn<bool>("withRecorder");
        QTest::addColumn<int>("position");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("first") << true << 0 << QStringList{"probe", "recorder", "decoder"};
        QTest::newRow("between") << true << 1 << QStringList{"recorder", "probe", "decoder"};
        QTest::newRow("past the end appends") << true << 7 << QStringList{"recorder", "decoder", "probe"};
        QTest::newRow("negative appends") << true << -1 << QStringList{"recorder", "decoder", "probe"};
        QTest::newRow("1 is after the decoder without recorder") << false << 1 << QStringList{"decoder", "probe"};
    }

    void insertedSinkTakesItsPlace()
    {
        QFETCH(bool, withRecorder);
        QFETCH(int, position);
        QFETCH(QStringList, order);
        Rig rig(withRecorder);
        RecordingSink probe("probe", &rig.log);
        rig.demuxer.insertPacketSink(position, &probe);
        rig.demuxer.insertPacketSink(0, nullptr);
        QCOMPARE(rig.demuxer.packetSinkCount(), withRecorder ? 3 : 2);
        rig.socket.feed(h264Header() + packet(ConfigFlag, startCoded("\x67\x64")) + packet(KeyFlag | 5, startCoded("\x65\x01")));
        // One that comes after the header is opened as it joins.
        RecordingSink late;
        rig.demuxer.insertPacketSink(0, &late);
        QCOMPARE(late.streams, probe.streams);
        QCOMPARE(late.streams.size(), 1);
        // Every packet goes to every sink in this order, the same packet, flags and all.
        QCOMPARE(rig.log, order + order);
        QCOMPARE(probe.packets.size(), 2);
        QCOMPARE(probe.packets, rig.decoder.packets);
        QCOMPARE(probe.packets[0].pts, qint64(AV_NOPTS_VALUE));
        QVERIFY(probe.packets[1].key);
        QCOMPARE(rig.recorder.packets.size(), withRecorder ? 2 : 0);
    }

    void deletedSinkOrSocketIsSkipped()
    {
        auto *socket = new FakeSocket;
        RecordingSink recorder;
        auto *decoder = new VideoDecoder;
        VideoDemuxer demuxer(socket, &recorder, decoder);
        socket->feed(h264Header() + packet(1, startCoded("\x41\x01")));
        delete decoder;
        socket->feed(packet(2, startCoded("\x41\x01")) + packet(3, startCoded("\x41\x01")).left(14));
        QCOMPARE(recorder.packets.size(), 2);
        delete socket;
        demuxer.read();
        QCOMPARE(recorder.packets.size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestVideoDemuxer)
#include "tst_videodemuxer.moc"
