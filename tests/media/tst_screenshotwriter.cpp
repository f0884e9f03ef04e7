#include "screenshotwriter.h"

#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
}

#include <memory>

namespace {
using FramePtr = std::unique_ptr<AVFrame, void (*)(AVFrame *)>;

// A grey picture of one colour: luma `y`, neutral chroma.
FramePtr greyFrame(int width, int height, int y)
{
    FramePtr frame(av_frame_alloc(), [](AVFrame *f) { av_frame_free(&f); });
    frame->width = width;
    frame->height = height;
    frame->format = AV_PIX_FMT_YUV420P;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return frame;
    for (int plane = 0; plane < 3; ++plane) {
        const int rows = plane == 0 ? height : (height + 1) / 2;
        memset(frame->data[plane], plane == 0 ? y : 128, size_t(frame->linesize[plane]) * size_t(rows));
    }
    return frame;
}
}

class TestScreenshotWriter : public QObject
{
    Q_OBJECT

private slots:
    // Two phones' writers take turns with pictures of two shapes, as a rotated phone sends them.
    void eachWriterFollowsItsOwnFrames()
    {
        ScreenshotWriter first;
        ScreenshotWriter second;
        const FramePtr wide = greyFrame(96, 48, 200);
        const FramePtr tall = greyFrame(48, 96, 60);
        const FramePtr large = greyFrame(2400, 1080, 120);
        const struct
        {
            ScreenshotWriter *writer;
            const AVFrame *frame;
            QSize size;
        } steps[] = {
            {&first, wide.get(), {96, 48}},   {&second, tall.get(), {48, 96}},  {&first, tall.get(), {48, 96}},
            {&second, wide.get(), {96, 48}},  {&first, large.get(), {1920, 864}}, {&first, wide.get(), {96, 48}},
        };
        for (const auto &step : steps) {
            const QImage image = step.writer->toImage(step.frame);
            QCOMPARE(image.size(), step.size);
            const int luma = step.frame->data[0][0];
            // Every corner carries the frame's grey, the last row included.
            for (const QPoint corner : {QPoint(0, 0), QPoint(step.size.width() - 1, step.size.height() - 1)}) {
                const QColor pixel = image.pixelColor(corner);
                QVERIFY2(qAbs(pixel.red() - pixel.blue()) < 8 && qAbs(pixel.green() - (luma - 16) * 255 / 219) < 12,
                         qPrintable(QString("%1 at %2,%3").arg(pixel.name()).arg(corner.x()).arg(corner.y())));
            }
        }
    }

    void unusableFramesGiveNoImage()
    {
        ScreenshotWriter writer;
        QVERIFY(writer.toImage(nullptr).isNull());
        FramePtr bad = greyFrame(32, 32, 100);
        bad->format = AV_PIX_FMT_NONE;
        QVERIFY(writer.toImage(bad.get()).isNull());
        // The writer recovers with the next good frame.
        QCOMPARE(writer.toImage(greyFrame(32, 32, 100).get()).size(), QSize(32, 32));
    }
};

QTEST_GUILESS_MAIN(TestScreenshotWriter)
#include "tst_screenshotwriter.moc"
