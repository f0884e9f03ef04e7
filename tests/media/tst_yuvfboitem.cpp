#include "framehandoff.h"
#include "yuvfboitem.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QtTest>

#include <cmath>

extern "C" {
#include <libavutil/frame.h>
}

namespace {

// The quadrants' colours, top-left, top-right, bottom-left, bottom-right, then the window below.
const QList<QColor> Colours{{200, 40, 40}, {40, 180, 60}, {50, 70, 200}, {220, 210, 60}, Qt::magenta};

// BT.601 RGB to Y, Cb or Cr (channel 0, 1, 2), full range (JPEG) or limited range as video uses.
uchar toYuv(const QColor &c, int channel, bool fullRange)
{
    const double v[3] = {0.299 * c.red() + 0.587 * c.green() + 0.114 * c.blue(),
                         -0.168736 * c.red() - 0.331264 * c.green() + 0.5 * c.blue(),
                         0.5 * c.red() - 0.418688 * c.green() - 0.081312 * c.blue()};
    const double scaled = fullRange ? v[channel] + (channel ? 128 : 0)
                                    : channel ? 128 + v[channel] * 224 / 255 : 16 + v[channel] * 219 / 255;
    return uchar(qBound(0, int(std::lround(scaled)), 255));
}

// A decoded 4:2:0 picture with the four colours in its quadrants and `padding` bytes after each row.
void publish(FrameHandoff &handoff, int w, int h, int padding = 0, bool fullRange = true)
{
    AVFrame *frame = av_frame_alloc();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->color_range = fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    frame->width = w;
    frame->height = h;
    for (int plane = 0; plane < 3; ++plane)
        frame->linesize[plane] = (plane ? (w + 1) / 2 : w) + padding;
    av_frame_get_buffer(frame, 0);
    for (int plane = 0; plane < 3; ++plane) {
        const int step = plane ? 2 : 1;
        for (int row = 0; step * row < h; ++row)
            for (int col = 0; step * col < w; ++col)
                frame->data[plane][row * frame->linesize[plane] + col]
                    = toYuv(Colours[(step * row < h / 2 ? 0 : 2) + (step * col < w / 2 ? 0 : 1)], plane, fullRange);
    }
    handoff.publish(frame);
    av_frame_free(&frame);
}

} // namespace

class TestYuvFboItem : public QObject
{
    Q_OBJECT

public:
    static void initMain() { QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL); }

private:
    // Pictures announce themselves through queued events; deliver them before drawing.
    QImage grab()
    {
        QCoreApplication::sendPostedEvents();
        return m_window->grabWindow();
    }
    // The item covers only the upper part of a magenta window, so the grabbed image itself shows
    // which way up it is: compares the centres of the item's quadrants and the window below it.
    void verifyColours(const QList<QColor> &expected, int tolerance)
    {
        const QImage image = grab();
        const int w = int(m_item->width()), h = int(m_item->height());
        const QPoint at[5] = {{w / 4, h / 4}, {3 * w / 4, h / 4}, {w / 4, 3 * h / 4}, {3 * w / 4, 3 * h / 4},
                              {w / 2, (h + image.height()) / 2}};
        for (int i = 0; i < 5; ++i) {
            const QColor c = image.pixelColor(at[i]);
            const QColor e = expected[i];
            QVERIFY2(qAbs(c.red() - e.red()) <= tolerance && qAbs(c.green() - e.green()) <= tolerance
                         && qAbs(c.blue() - e.blue()) <= tolerance,
                     qPrintable(QStringLiteral("spot %1 is (%2, %3, %4)").arg(i).arg(c.red()).arg(c.green()).arg(c.blue())));
        }
    }
    void verifyQuadrants() { verifyColours(Colours, 6); }
    void verifyBlack() { verifyColours({Qt::black, Qt::black, Qt::black, Qt::black, Qt::magenta}, 0); }

    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<FrameHandoff> m_frames;
    YuvFboItem *m_item = nullptr;

private slots:
    void initTestCase()
    {
        m_window = std::make_unique<QQuickWindow>();
        m_window->resize(400, 600);
        m_window->setColor(Qt::magenta);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        QCOMPARE(m_window->rendererInterface()->graphicsApi(), QSGRendererInterface::OpenGL);
    }

    void init()
    {
        // A fresh item and source per test, so each gets its own renderer and counts.
        m_frames = std::make_unique<FrameHandoff>();
        m_item = new YuvFboItem(m_window->contentItem());
        m_item->setSize(QSizeF(m_window->width(), m_window->height() - 200));
        m_item->setSource(m_frames.get());
    }

    void cleanup()
    {
        delete m_item;
        m_item = nullptr;
        m_frames.reset();
    }

    void quadrantsUpright_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("padding");
        QTest::addColumn<bool>("fullRange");
        QTest::newRow("721x1601 padded rows") << QSize(721, 1601) << 37 << true;
        QTest::newRow("33x17 packed rows") << QSize(33, 17) << 0 << true;
        QTest::newRow("limited range") << QSize(360, 800) << 32 << false;
    }

    void quadrantsUpright()
    {
        QFETCH(QSize, size);
        QFETCH(int, padding);
        QFETCH(bool, fullRange);
        publish(*m_frames, size.width(), size.height(), padding, fullRange);
        verifyQuadrants();
    }

    void blackWithoutPictureAndAfterClear()
    {
        verifyBlack();
        QCOMPARE(m_item->textureAllocations(), 0);
        publish(*m_frames, 721, 1601);
        verifyQuadrants();
        m_frames->clear();
        verifyBlack();
        // ...until the next picture.
        publish(*m_frames, 64, 64);
        verifyQuadrants();
    }

    void drawsOnlyWhenANewPictureCame()
    {
        QSignalSpy swaps(m_window.get(), &QQuickWindow::frameSwapped);
        QElapsedTimer clock;
        clock.start();
        publish(*m_frames, 360, 800);
        QTRY_COMPARE_WITH_TIMEOUT(m_item->uploads(), 1, 10000);
        const int quiet = int(3 * clock.elapsed()) + 100;
        // The frames already on their way (the new item's first one, the picture's) come and go;
        // a window that keeps drawing never falls quiet.
        int frames = 0;
        while (swaps.wait(quiet) && ++frames < 10)
            swaps.clear();
        QVERIFY2(frames < 10, "the window keeps drawing without a new picture");
        QCOMPARE(m_item->uploads(), 1);
        // A repaint for another reason draws the kept picture without uploading it again.
        verifyQuadrants();
        QCOMPARE(m_item->uploads(), 1);
    }

    void watchesItsSourceOnlyWhileShown()
    {
        QVERIFY(m_item->isShown());
        QVERIFY(m_frames->isWatched());
        m_item->setVisible(false);
        QVERIFY(!m_frames->isWatched());
        m_item->setVisible(true);
        m_item->setInViewport(false);
        QVERIFY(!m_frames->isWatched());
        m_item->setInViewport(true);
        QVERIFY(m_frames->isWatched());
        // Two items on one source: watched until the last one goes.
        auto *second = new YuvFboItem(m_window->contentItem());
        second->setSource(m_frames.get());
        delete m_item;
        m_item = nullptr;
        QVERIFY(m_frames->isWatched());
        delete second;
        QVERIFY(!m_frames->isWatched());
    }

    void texturesReallocatedOnlyOnSizeChange()
    {
        publish(*m_frames, 1080, 2400);
        grab();
        QCOMPARE(m_item->textureAllocations(), 3);
        for (int i = 0; i < 3; ++i) {
            publish(*m_frames, 1080, 2400, 8 * i);
            grab();
        }
        QCOMPARE(m_item->textureAllocations(), 3);

        // Rotation: all three planes change size, once.
        publish(*m_frames, 2400, 1080);
        verifyQuadrants();
        QCOMPARE(m_item->textureAllocations(), 6);
        publish(*m_frames, 2400, 1080);
        grab();
        QCOMPARE(m_item->textureAllocations(), 6);

        // 2400 -> 2399 wide: the chroma planes stay 1200 wide, only luma is reallocated.
        publish(*m_frames, 2399, 1080);
        verifyQuadrants();
        QCOMPARE(m_item->textureAllocations(), 7);
    }
};

QTEST_MAIN(TestYuvFboItem)
#include "tst_yuvfboitem.moc"
