#include "fakesocket.h"
#include "streambuilder.h"
#include "videodecoder.h"
#include "videodemuxer.h"

#include <QSignalSpy>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/log.h>
}

using namespace StreamBuilder;

class TestVideoDecoder : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { av_log_set_level(AV_LOG_FATAL); }

    void decodesAndResumesAfterAPauseAtAKeyFrame()
    {
        // One picture a second: key frames at 0 and 10.
        const H264Clip clip = encodeClip({64, 48}, 14, 1);
        QCOMPARE(clip.pictures.size(), 14);
        FakeSocket socket;
        VideoDecoder decoder;
        VideoDemuxer demuxer(&socket, nullptr, &decoder);
        decoder.setDemuxer(&demuxer);
        QList<qint64> shown;
        connect(&decoder, &VideoDecoder::frameDecoded, this, [&](AVFrame *frame) {
            QCOMPARE(QSize(frame->width, frame->height), clip.size);
            QCOMPARE(frame->format, int(AV_PIX_FMT_YUV420P));
            shown << frame->pts;
        });
        // In arbitrary pieces, as a socket delivers them; each picture comes out as it goes in.
        const QByteArray start = clip.stream(3);
        for (int pos = 0; pos < start.size(); pos += 100)
            socket.feed(start.mid(pos, 100));
        QCOMPARE(shown, (QList<qint64>{clip.pictures[0].ptsUs, clip.pictures[1].ptsUs, clip.pictures[2].ptsUs}));

        decoder.setDecodingPaused(true);
        QVERIFY(decoder.isDecodingPaused());
        socket.feed(clip.packet(3) + clip.packet(4));
        QCOMPARE(shown.size(), 3);
        // Resumed: pictures that depend on skipped ones are not decoded; the next key frame is.
        decoder.setDecodingPaused(false);
        int key = 5;
        while (key < clip.pictures.size() && !clip.pictures[key].keyFrame)
            socket.feed(clip.packet(key++));
        QCOMPARE(shown.size(), 3);
        QVERIFY2(key > 5 && key < clip.pictures.size(), "the clip needs a later key frame");
        for (int i = key; i < clip.pictures.size(); ++i)
            socket.feed(clip.packet(i));
        QCOMPARE(shown.size(), 3 + int(clip.pictures.size()) - key);
        QCOMPARE(shown[3], clip.pictures[key].ptsUs);
    }

    void codecContextFreedAfterBoth_data()
    {
        QTest::addColumn<bool>("decoderFirst");
        QTest::addColumn<bool>("decoderFed");
        QTest::newRow("demuxer first") << false << true;
        QTest::newRow("decoder first") << true << true;
        QTest::newRow("demuxer first, nothing decoded") << false << false;
        QTest::newRow("decoder first, nothing decoded") << true << false;
    }

    void codecContextFreedAfterBoth()
    {
        QFETCH(bool, decoderFirst);
        QFETCH(bool, decoderFed);
        const H264Clip clip = encodeClip({64, 48}, 2);
        FakeSocket socket;
        auto *decoder = new VideoDecoder;
        auto *demuxer = new VideoDemuxer(&socket, nullptr, decoder);
        decoder->setDemuxer(demuxer);
        const QByteArray stream = clip.stream(2);
        socket.feed(stream.left(VideoDemuxer::HeaderSize));
        std::weak_ptr<AVCodecContext> context = demuxer->sharedCodecContext();
        QVERIFY(!context.expired());
        if (decoderFed) {
            QSignalSpy decoded(decoder, &VideoDecoder::frameDecoded);
            socket.feed(stream.mid(VideoDemuxer::HeaderSize));
            QCOMPARE(decoded.count(), 2);
        }
        if (decoderFirst) {
            delete decoder;
            QVERIFY(!context.expired());
            delete demuxer;
        } else {
            delete demuxer;
            QCOMPARE(context.expired(), !decoderFed);
            delete decoder;
        }
        QVERIFY(context.expired());
    }
};

QTEST_GUILESS_MAIN(TestVideoDecoder)
#include "tst_videodecoder.moc"
