#include "screenshotwriter.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

extern "C" {
#include <libavutil/frame.h>
}

#include <memory>

namespace {

using FramePtr = std::unique_ptr<AVFrame, void (*)(AVFrame *)>;

// A grey 4:2:0 picture, luma topY in its upper half and bottomY in its lower half.
FramePtr greyFrame(int width, int height, int topY, int bottomY)
{
    FramePtr frame(av_frame_alloc(), [](AVFrame *f) { av_frame_free(&f); });
    frame->width = width;
    frame->height = height;
    frame->format = AV_PIX_FMT_YUV420P;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return frame;
    for (int row = 0; row < height; ++row)
        memset(frame->data[0] + row * frame->linesize[0], row < height / 2 ? topY : bottomY, size_t(width));
    for (int plane = 1; plane < 3; ++plane)
        memset(frame->data[plane], 128, size_t(frame->linesize[plane]) * size_t((height + 1) / 2));
    return frame;
}

// Grey of about the given video luma (16..235 as 0..255), as a pixel of the converted image.
bool greyOf(const QColor &pixel, int luma)
{
    return qAbs(pixel.red() - pixel.blue()) < 12 && qAbs(pixel.green() - (luma - 16) * 255 / 219) < 12;
}

} // namespace

class TestScreenshotWriter : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temp;
    QString m_folder;

private slots:
    void initTestCase()
    {
        // Missing on purpose: the first screenshot creates it with its parents.
        m_folder = m_temp.path() + "/shots/nested/";
        ScreenshotWriter::setFolder(m_temp.path() + "/shots/nested");
    }

    void savedAsJpeg_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("saved");
        QTest::addColumn<QString>("serial");
        QTest::addColumn<QString>("named");
        QTest::newRow("portrait kept") << QSize(1080, 2400) << QSize(1080, 2400) << "R58M12ABCDE" << "R58M12ABCDE";
        QTest::newRow("landscape to 1920") << QSize(2400, 1080) << QSize(1920, 864) << "R58M12ABCDE" << "R58M12ABCDE";
        QTest::newRow("height truncated") << QSize(2401, 1080) << QSize(1920, 863) << "R58M12ABCDE" << "R58M12ABCDE";
        QTest::newRow("exactly 1920 kept") << QSize(1920, 1080) << QSize(1920, 1080) << "R58M12ABCDE" << "R58M12ABCDE";
        // A network serial's colon is no file name's.
        QTest::newRow("odd small") << QSize(721, 1601) << QSize(721, 1601) << "192.168.1.20:5555" << "192.168.1.20_5555";
    }

    void savedAsJpeg()
    {
        QFETCH(QSize, picture);
        QFETCH(QSize, saved);
        QFETCH(QString, serial);
        QFETCH(QString, named);
        ScreenshotWriter writer;
        QString path;
        QVERIFY(writer.save(greyFrame(picture.width(), picture.height(), 220, 40).get(), m_folder, serial, &path));
        const QRegularExpressionMatch name = QRegularExpression(
            "^" + QRegularExpression::escape(m_folder + named) + "_(\\d{8}_\\d{6})_([1-9]\\d{3})\\.jpg$").match(path);
        QVERIFY2(name.hasMatch(), qPrintable(path));
        QVERIFY(QDateTime::fromString(name.captured(1), "yyyyMMdd_hhmmss").isValid());
        QVERIFY(name.captured(2).toInt() <= 9998);
        const QImage image(path, "JPEG");
        QCOMPARE(image.size(), saved);
        // Bright above, dark below: the rows were converted in order and not flipped.
        QVERIFY(greyOf(image.pixelColor(saved.width() / 2, saved.height() / 4), 220));
        QVERIFY(greyOf(image.pixelColor(saved.width() / 2, saved.height() * 3 / 4), 40));
    }

    void failedSaveReportsPath()
    {
        ScreenshotWriter writer;
        QString path;
        // A folder where a file is makes the save fail.
        const QString blocker = m_temp.filePath("blocker");
        QFile file(blocker);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(!writer.save(greyFrame(64, 64, 100, 100).get(), blocker + "/", "R58M", &path));
        QVERIFY(path.startsWith(blocker + "/R58M_"));
        QVERIFY(!QFileInfo::exists(path));
    }

    // Two phones' writers take turns with pictures of several shapes, as a rotated phone sends them,
    // and with frames they cannot use.
    void eachWriterFollowsItsOwnFrames()
    {
        ScreenshotWriter first;
        ScreenshotWriter second;
        const FramePtr wide = greyFrame(96, 48, 200, 60);
        const FramePtr tall = greyFrame(48, 96, 200, 60);
        const FramePtr large = greyFrame(2400, 1080, 200, 60);
        FramePtr bad = greyFrame(32, 32, 200, 60);
        bad->format = AV_PIX_FMT_NONE;
        const struct
        {
            ScreenshotWriter *writer;
            const AVFrame *frame;
            QSize size; // 0 x 0: no image
        } steps[] = {
            {&first, wide.get(), {96, 48}},   {&second, tall.get(), {48, 96}}, {&first, tall.get(), {48, 96}},
            {&second, wide.get(), {96, 48}},  {&first, large.get(), {1920, 864}}, {&first, nullptr, {0, 0}},
            {&first, bad.get(), {0, 0}},      {&first, wide.get(), {96, 48}},
        };
        for (const auto &step : steps) {
            const QImage image = step.writer->toImage(step.frame);
            QCOMPARE(image.size(), step.size);
            // The first and the last row are the frame's own.
            QVERIFY(image.isNull() || greyOf(image.pixelColor(0, 0), 200));
            QVERIFY(image.isNull() || greyOf(image.pixelColor(step.size.width() - 1, step.size.height() - 1), 60));
        }
    }
};

QTEST_GUILESS_MAIN(TestScreenshotWriter)
#include "tst_screenshotwriter.moc"
