#include "audiodecoder.h"
#include "audiodemuxer.h"
#include "audioresampler.h"
#include "fakesocket.h"
#include "opustoneencoder.h"
#include "simpleaudioplayer.h"
#include "streambuilder.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
}

using namespace StreamBuilder;

constexpr quint32 Opus = StreamFraming::codecOpus;

// The audio socket's bytes through AudioDemuxer, AudioDecoder and the player's conversion.
class TestAudioChain : public QObject
{
    Q_OBJECT

private slots:
    void headerAndPacketsInOneRead_data()
    {
        QTest::addColumn<bool>("nameFirst");
        QTest::newRow("codec id only (video socket came first)") << false;
        QTest::newRow("device name first (no video)") << true;
    }

    void headerAndPacketsInOneRead()
    {
        QFETCH(bool, nameFirst);
        FakeSocket socket;
        QStringList log;
        RecordingSink recorder("recorder", &log);
        RecordingSink decoder("decoder", &log);
        AudioDemuxer demuxer(&socket, &recorder, &decoder, nameFirst);

        const QByteArray largest(0x100000, '\x5a');
        QByteArray bytes = (nameFirst ? StreamFraming::deviceName("Pixel 7") : QByteArray()) + StreamFraming::audioHeader(Opus);
        bytes += packet(ConfigFlag, "OpusHead-config");
        bytes += packet(KeyFlag, "not-a-key-frame");
        bytes += packetHeader(7, 0);                 // dropped, 12 bytes only
        bytes += packetHeader(8, 0x100001);          // one byte too large: dropped, 12 bytes only
        bytes += packet(20000, largest);
        bytes += packet(40000, "tail");
        socket.feed(bytes);

        // Both sinks are opened before the first packet, with the one stream a phone sends.
        const QList<SeenStream> opened{{AV_CODEC_ID_OPUS, QSize(0, 0)}};
        QCOMPARE(recorder.streams, opened);
        QCOMPARE(decoder.streams, opened);
        QCOMPARE(demuxer.stream()->sample_rate, 48000);
        QCOMPARE(demuxer.stream()->ch_layout.nb_channels, 2);
        QCOMPARE(demuxer.deviceName(), nameFirst ? QString("Pixel 7") : QString());
        QCOMPARE(demuxer.codecId(), Opus);
        const QList<SeenPacket> expected = {
            {"OpusHead-config", AV_NOPTS_VALUE, AV_NOPTS_VALUE, false},
            {"not-a-key-frame", qint64(KeyFlag), qint64(KeyFlag), false},
            {largest, 20000, 20000, false},
            {"tail", 40000, 40000, false},
        };
        QCOMPARE(recorder.packets, expected);
        QCOMPARE(decoder.packets, expected);
        QCOMPARE(log.mid(0, 2), (QStringList{"recorder", "decoder"}));
    }

    void phoneWithoutSound_data()
    {
        QTest::addColumn<quint32>("id");
        QTest::addColumn<QString>("message");
        QTest::newRow("0: disabled") << 0u << "Audio is not available on this phone (Android 11 or later)";
        QTest::newRow("1: error") << 1u << "Audio capture failed on this phone";
    }

    void phoneWithoutSound()
    {
        QFETCH(quint32, id);
        QFETCH(QString, message);
        FakeSocket socket;
        RecordingSink recorder;
        AudioDemuxer demuxer(&socket, &recorder, nullptr);
        QSignalSpy unavailable(&demuxer, &AudioDemuxer::audioUnavailable);

        socket.feed(StreamFraming::audioHeader(id) + packet(20000, "x"));
        socket.feed(packet(40000, "y"));
        QCOMPARE(unavailable.count(), 1);
        QCOMPARE(unavailable.at(0).at(0).toString(), message);
        QCOMPARE(demuxer.state(), AudioDemuxer::State::Unavailable);
        QVERIFY(!demuxer.stream());
        QVERIFY(recorder.streams.isEmpty());
        QVERIFY(recorder.packets.isEmpty());
    }

    void opusFramesBecome48kStereoPcm()
    {
        OpusToneEncoder tone;
        QString error;
        QVERIFY2(tone.open(128000, &error), qPrintable(error));
        QByteArray bytes = StreamFraming::audioHeader(Opus) + packet(ConfigFlag, tone.config());
        for (int i = 0; i < 5; ++i) {
            qint64 pts = 0;
            const QByteArray payload = tone.nextPacket(&pts);
            QVERIFY(!payload.isEmpty());
            bytes += packet(quint64(pts), payload);
        }

        FakeSocket socket;
        AudioDecoder decoder;
        AudioDemuxer demuxer(&socket, nullptr, &decoder);
        AudioResampler resampler;
        QList<qsizetype> sizes;
        SimpleAudioPlayer idle;
        connect(&decoder, &AudioDecoder::frameDecoded, this, [&](AVFrame *frame) {
            QCOMPARE(frame->sample_rate, 48000);
            QCOMPARE(frame->ch_layout.nb_channels, 2);
            // Before start() the player takes nothing, whatever it is given.
            idle.playFrame(frame);
            sizes << resampler.convert(frame).size();
        });
        socket.feed(bytes);

        // The configuration packet is not sound: five packets, five 20 ms frames of 960 samples.
        QCOMPARE(sizes, QList<qsizetype>(5, 3840));
        QCOMPARE(idle.framesPlayed() + idle.framesDropped(), 0);

        // Paused, packets are dropped; resumed, the next one is heard again.
        qint64 pts = 0;
        for (const bool paused : {true, false}) {
            decoder.setDecodingPaused(paused);
            const QByteArray payload = tone.nextPacket(&pts);
            socket.feed(packet(quint64(pts), payload));
        }
        QCOMPARE(sizes, QList<qsizetype>(6, 3840));
    }

    // A frame that does not fit whole is not written at all, never in part.
    void fullSinkDropsTheWholeFrame()
    {
        const QByteArray pcm(3840, '\x11');
        for (const qsizetype room : {3840, 3839}) {
            QBuffer output;
            output.open(QIODevice::WriteOnly);
            QCOMPARE(SimpleAudioPlayer::writeWhole(&output, pcm, room), room == 3840);
            QCOMPARE(output.data().size(), room == 3840 ? 3840 : 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestAudioChain)
#include "tst_audiochain.moc"
