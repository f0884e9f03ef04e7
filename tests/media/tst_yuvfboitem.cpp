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

struct Rgb
{
    int r, g, b;
};

struct Yuv
{
    uchar y, u, v;
};

uchar clampByte(double value)
{
    return uchar(qBound(0, int(std::lround(value)), 255));
}

// BT.601 RGB to YCbCr, full range (JPEG) or limited range (16..235, 16..240) as video uses.
Yuv toYuv(Rgb c, bool fullRange)
{
    const double y = 0.299 * c.r + 0.587 * c.g + 0.114 * c.b;
    const double cb = -0.168736 * c.r - 0.331264 * c.g + 0.5 * c.b;
    const double cr = 0.5 * c.r - 0.418688 * c.g - 0.081312 * c.b;
    if (fullRange)
        return {clampByte(y), clampByte(cb + 128), clampByte(cr + 128)};
    return {clampByte(16 + y * 219 / 255), clampByte(128 + cb * 224 / 255), clampByte(128 + cr * 224 / 255)};
}

const Rgb TopLeft{200, 40, 40};
const Rgb TopRight{40, 180, 60};
const Rgb BottomLeft{50, 70, 200};
const Rgb BottomRight{220, 210, 60};

// A 4:2:0 decoded picture whose quadrants have the four colours above, with padded rows.
struct Picture
{
    Picture(int w, int h, int padding = 0, bool fullRange = true)
        : frame(av_frame_alloc())
    {
        const int cw = (w + 1) / 2, ch = (h + 1) / 2;
        frame->format = AV_PIX_FMT_YUV420P;
        frame->color_range = fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
        frame->width = w;
        frame->height = h;
        frame->linesize[0] = w + padding;
        frame->linesize[1] = frame->linesize[2] = cw + padding;
        av_frame_get_buffer(frame, 0);
        auto colourAt = [&](bool left, bool top) { return top ? (left ? TopLeft : TopRight) : (left ? BottomLeft : BottomRight); };
        for (int row = 0; row < h; ++row)
            for (int col = 0; col < w; ++col)
                frame->data[0][row * frame->linesize[0] + col] = toYuv(colourAt(col < w / 2, row < h / 2), fullRange).y;
        for (int row = 0; row < ch; ++row)
            for (int col = 0; col < cw; ++col) {
                const Yuv c = toYuv(colourAt(2 * col < w / 2, 2 * row < h / 2), fullRange);
                frame->data[1][row * frame->linesize[1] + col] = c.u;
                frame->data[2][row * frame->linesize[2] + col] = c.v;
            }
    }
    ~Picture() { av_frame_free(&frame); }
    void publishTo(FrameHandoff &handoff) const { handoff.publish(frame); }

    AVFrame *frame;
};

bool near(const QColor &actual, Rgb expected, int tolerance = 6)
{
    return qAbs(actual.red() - expected.r) <= tolerance && qAbs(actual.green() - expected.g) <= tolerance
           && qAbs(actual.blue() - expected.b) <= tolerance;
}

QString describe(const QColor &c)
{
    return QStringLiteral("(%1, %2, %3)").arg(c.red()).arg(c.green()).arg(c.blue());
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
    // Colours at the centres of the item's four quadrants (top-left, top-right, bottom-left,
    // bottom-right), then the window background below the item. The item covers only the upper
    // part of a magenta window, so the grabbed image itself shows which way up it is.
    QList<QColor> quadrantColours()
    {
        const QImage image = grab();
        const int w = int(m_item->width()), h = int(m_item->height());
        const QColor below = image.pixelColor(w / 2, (h + image.height()) / 2);
        return {image.pixelColor(w / 4, h / 4), image.pixelColor(3 * w / 4, h / 4),
                image.pixelColor(w / 4, 3 * h / 4), image.pixelColor(3 * w / 4, 3 * h / 4), below};
    }
    void verifyQuadrants()
    {
        const QList<QColor> colours = quadrantColours();
        const Rgb expected[5] = {TopLeft, TopRight, BottomLeft, BottomRight, {255, 0, 255}};
        for (int i = 0; i < 5; ++i)
            QVERIFY2(near(colours[i], expected[i]),
                     qPrintable(QStringLiteral("quadrant %1 is %2").arg(i).arg(describe(colours[i]))));
    }
    void verifyBlack()
    {
        const QList<QColor> colours = quadrantColours();
        for (int i = 0; i < 4; ++i)
            QVERIFY2(near(colours[i], {0, 0, 0}, 0), qPrintable(describe(colours[i])));
        QVERIFY2(near(colours[4], {255, 0, 255}, 0), qPrintable(describe(colours[4])));
    }

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
        Picture(size.width(), size.height(), padding, fullRange).publishTo(*m_frames);
        verifyQuadrants();
    }

    void blackWithoutPictureAndAfterClear()
    {
        verifyBlack();
        QCOMPARE(m_item->textureAllocations(), 0);
        Picture(721, 1601).publishTo(*m_frames);
        verifyQuadrants();
        m_frames->clear();
        verifyBlack();
        // ...until the next picture.
        Picture(64, 64).publishTo(*m_frames);
        verifyQuadrants();
    }

    void drawsOnlyWhenANewPictureCame()
    {
        QSignalSpy swaps(m_window.get(), &QQuickWindow::frameSwapped);
        QElapsedTimer clock;
        clock.start();
        Picture(360, 800).publishTo(*m_frames);
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
        Picture(1080, 2400).publishTo(*m_frames);
        grab();
        QCOMPARE(m_item->textureAllocations(), 3);
        for (int i = 0; i < 3; ++i) {
            Picture(1080, 2400, 8 * i).publishTo(*m_frames);
            grab();
        }
        QCOMPARE(m_item->textureAllocations(), 3);

        // Rotation: all three planes change size, once.
        Picture(2400, 1080).publishTo(*m_frames);
        verifyQuadrants();
        QCOMPARE(m_item->textureAllocations(), 6);
        Picture(2400, 1080).publishTo(*m_frames);
        grab();
        QCOMPARE(m_item->textureAllocations(), 6);

        // 2400 -> 2399 wide: the chroma planes stay 1200 wide, only luma is reallocated.
        Picture(2399, 1080).publishTo(*m_frames);
        verifyQuadrants();
        QCOMPARE(m_item->textureAllocations(), 7);
    }
};

QTEST_MAIN(TestYuvFboItem)
#include "tst_yuvfboitem.moc"
