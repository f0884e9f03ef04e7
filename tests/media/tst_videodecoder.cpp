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

    void opensALowDelayDecoderOfItsOwn()
    {
        FakeSocket socket;
        const int contexts = VideoDecoder::liveCodecContexts();
        auto *decoder = new VideoDecoder;
        VideoDemuxer demuxer(&socket, nullptr, decoder);
        QVERIFY(!decoder->codecContext());
        socket.feed(header("phone", "h264", 1080, 1920));
        const AVCodecContext *context = decoder->codecContext();
        QVERIFY(context && avcodec_is_open(const_cast<AVCodecContext *>(context)));
        QCOMPARE(QSize(context->width, context->height), QSize(1080, 1920));
        // Pictures leave the decoder as soon as they are whole.
        QVERIFY(context->flags & AV_CODEC_FLAG_LOW_DELAY);
        QVERIFY(context->flags2 & AV_CODEC_FLAG2_FAST);
        QVERIFY(context->flags2 & AV_CODEC_FLAG2_CHUNKS);
        QCOMPARE(VideoDecoder::liveCodecContexts(), contexts + 1);
        // The context goes with its decoder, whatever the demuxer does.
        delete decoder;
        QCOMPARE(VideoDecoder::liveCodecContexts(), contexts);
    }
};

QTEST_GUILESS_MAIN(TestVideoDecoder)
#include "tst_videodecoder.moc"
