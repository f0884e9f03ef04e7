#include "h264parameters.h"

#include <QtTest>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
}

Q_DECLARE_METATYPE(AVRational)

namespace {

// The configuration (SPS and PPS, Annex B) that libx264 writes for these settings.
QByteArray x264Config(AVRational fps, AVPixelFormat format, const char *profile, const char *params)
{
    const AVCodec *codec = avcodec_find_encoder_by_name("libx264");
    AVCodecContext *context = codec ? avcodec_alloc_context3(codec) : nullptr;
    if (!context)
        return {};
    context->width = 64;
    context->height = 48;
    context->pix_fmt = format;
    context->time_base = av_inv_q(fps);
    context->framerate = fps;
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_opt_set(context->priv_data, "preset", "ultrafast", 0);
    av_opt_set(context->priv_data, "profile", profile, 0);
    av_opt_set(context->priv_data, "x264-params", params, 0);
    QByteArray config;
    if (avcodec_open2(context, codec, nullptr) == 0)
        config = QByteArray(reinterpret_cast<const char *>(context->extradata), context->extradata_size);
    avcodec_free_context(&context);
    return config;
}

} // namespace

class TestH264Parameters : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { av_log_set_level(AV_LOG_FATAL); }

    void frameRateFromTheSps_data()
    {
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<AVRational>("rate");
        const AVRational none{0, 1};
        QTest::newRow("baseline, 30") << x264Config({30, 1}, AV_PIX_FMT_YUV420P, "baseline", "") << AVRational{30, 1};
        QTest::newRow("high, 60") << x264Config({60, 1}, AV_PIX_FMT_YUV420P, "high", "") << AVRational{60, 1};
        QTest::newRow("high, 29.97") << x264Config({30000, 1001}, AV_PIX_FMT_YUV420P, "high", "") << AVRational{30000, 1001};
        QTest::newRow("4:4:4, 25") << x264Config({25, 1}, AV_PIX_FMT_YUV444P, "high444", "") << AVRational{25, 1};
        // x264 keeps its scaling lists in the PPS; this SPS carries three (one cut short by a zero
        // scale), and its timing, 1 tick in 60, needs an emulation prevention byte.
        QTest::newRow("high, scaling lists in the SPS, escaped timing")
            << QByteArray::fromHex("000000016764001fad8469249249249241ffffffffffffffff7423d080000003008000001e60000000"
                                   "0168ce3c80")
            << AVRational{30, 1};
        const QByteArray config = x264Config({30, 1}, AV_PIX_FMT_YUV420P, "baseline", "");
        const qsizetype pps = config.indexOf(QByteArray::fromHex("0000000168"));
        QTest::newRow("no SPS") << config.mid(pps) << none;
        QTest::newRow("SPS cut short") << config.left(12) << none;
        QTest::newRow("nothing") << QByteArray() << none;
    }

    void frameRateFromTheSps()
    {
        QFETCH(QByteArray, config);
        QFETCH(AVRational, rate);
        const AVRational read = H264Parameters::frameRate(reinterpret_cast<const uchar *>(config.constData()),
                                                          int(config.size()));
        QCOMPARE(qMakePair(read.num, read.den), qMakePair(rate.num, rate.den));
    }
};

QTEST_GUILESS_MAIN(TestH264Parameters)
#include "tst_h264parameters.moc"
