#include "yuvfboitem.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QtTest>

#include <cmath>

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

// Full-range BT.601 (JPEG) RGB to YCbCr.
Yuv toYuv(Rgb c)
{
    return {clampByte(0.299 * c.r + 0.587 * c.g + 0.114 * c.b),
            clampByte(-0.168736 * c.r - 0.331264 * c.g + 0.5 * c.b + 128),
            clampByte(0.5 * c.r - 0.418688 * c.g - 0.081312 * c.b + 128)};
}

const Rgb TopLeft{200, 40, 40};
const Rgb TopRight{40, 180, 60};
const Rgb BottomLeft{50, 70, 200};
const Rgb BottomRight{220, 210, 60};

// A 4:2:0 picture whose quadrants have the four colours above, stored with padded rows.
struct Picture
{
    Picture(int w, int h, int padding = 0, Rgb tl = TopLeft)
        : width(w), height(h)
    {
        const int cw = (w + 1) / 2, ch = (h + 1) / 2;
        strideY = w + padding;
        strideC = cw + padding;
        y.fill('\xEE', qsizetype(strideY) * h);
        u.fill('\xEE', qsizetype(strideC) * ch);
        v.fill('\xEE', qsizetype(strideC) * ch);
        auto colourAt = [&](bool left, bool top) { return top ? (left ? tl : TopRight) : (left ? BottomLeft : BottomRight); };
        for (int row = 0; row < h; ++row)
            for (int col = 0; col < w; ++col)
                y[row * strideY + col] = char(toYuv(colourAt(col < w / 2, row < h / 2)).y);
        for (int row = 0; row < ch; ++row)
            for (int col = 0; col < cw; ++col) {
                const Yuv c = toYuv(colourAt(2 * col < w / 2, 2 * row < h / 2));
                u[row * strideC + col] = char(c.u);
                v[row * strideC + col] = char(c.v);
            }
    }
    void presentTo(YuvFboItem *item) const
    {
        item->present(width, height, yData(), strideY, uData(), strideC, vData(), strideC);
    }
    // A plane as the item must keep it: rows back to back, padding dropped.
    static QByteArray packed(const QByteArray &plane, int stride, int rowLength, int rows)
    {
        QByteArray bytes;
        for (int row = 0; row < rows; ++row)
            bytes += plane.mid(qsizetype(row) * stride, rowLength);
        return bytes;
    }
    const uint8_t *yData() const { return reinterpret_cast<const uint8_t *>(y.constData()); }
    const uint8_t *uData() const { return reinterpret_cast<const uint8_t *>(u.constData()); }
    const uint8_t *vData() const { return reinterpret_cast<const uint8_t *>(v.constData()); }

    int width, height, strideY, strideC;
    QByteArray y, u, v;
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
    QImage grab() { return m_window->grabWindow(); }
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
        // A fresh item per test, so each gets its own renderer and texture count.
        m_item = new YuvFboItem(m_window->contentItem());
        m_item->setSize(QSizeF(m_window->width(), m_window->height() - 200));
    }

    void cleanup()
    {
        delete m_item;
        m_item = nullptr;
    }

    void quadrantsUpright_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("padding");
        QTest::newRow("721x1601 padded rows") << QSize(721, 1601) << 37;
        QTest::newRow("33x17 packed rows") << QSize(33, 17) << 0;
    }

    void quadrantsUpright()
    {
        QFETCH(QSize, size);
        QFETCH(int, padding);
        const Picture picture(size.width(), size.height(), padding);
        picture.presentTo(m_item);
        // Kept packed, every row whole, so a wrong stride anywhere shows in the copy.
        const int cw = (size.width() + 1) / 2, ch = (size.height() + 1) / 2;
        const YuvFrame frame = m_item->pendingFrame();
        QVERIFY(m_item->hasNewFrame());
        QCOMPARE(frame.width, size.width());
        QCOMPARE(frame.height, size.height());
        QCOMPARE(frame.strideY, size.width());
        QCOMPARE(frame.strideU, cw);
        QCOMPARE(frame.strideV, cw);
        QCOMPARE(frame.planeY, Picture::packed(picture.y, picture.strideY, size.width(), size.height()));
        QCOMPARE(frame.planeU, Picture::packed(picture.u, picture.strideC, cw, ch));
        QCOMPARE(frame.planeV, Picture::packed(picture.v, picture.strideC, cw, ch));
        verifyQuadrants();
    }

    void blackWithoutPictureAndAfterClearFrame()
    {
        verifyBlack();
        QCOMPARE(m_item->textureAllocations(), 0);
        Picture(721, 1601).presentTo(m_item);
        verifyQuadrants();
        m_item->clearFrame();
        QCOMPARE(m_item->pendingFrame().width, 0);
        QVERIFY(m_item->pendingFrame().planeY.isEmpty());
        verifyBlack();
        // ...until the next picture.
        Picture(64, 64).presentTo(m_item);
        verifyQuadrants();
    }

    void invalidPresentChangesNothing_data()
    {
        QTest::addColumn<int>("w");
        QTest::addColumn<int>("h");
        QTest::addColumn<int>("nullPlane"); // -1: none
        QTest::newRow("null y") << 64 << 64 << 0;
        QTest::newRow("null u") << 64 << 64 << 1;
        QTest::newRow("null v") << 64 << 64 << 2;
        QTest::newRow("zero width") << 0 << 64 << -1;
        QTest::newRow("zero height") << 64 << 0 << -1;
        QTest::newRow("negative width") << -8 << 64 << -1;
    }

    void invalidPresentChangesNothing()
    {
        QFETCH(int, w);
        QFETCH(int, h);
        QFETCH(int, nullPlane);
        const Picture shown(721, 1601);
        shown.presentTo(m_item);
        verifyQuadrants();
        const YuvFrame before = m_item->pendingFrame();

        // A picture of other colours that must not replace the one on screen.
        const Picture other(64, 64, 0, Rgb{255, 255, 255});
        m_item->present(w, h, nullPlane == 0 ? nullptr : other.yData(), other.strideY,
                        nullPlane == 1 ? nullptr : other.uData(), other.strideC,
                        nullPlane == 2 ? nullptr : other.vData(), other.strideC);
        const YuvFrame after = m_item->pendingFrame();
        QCOMPARE(after.width, before.width);
        QCOMPARE(after.height, before.height);
        QCOMPARE(after.planeY, before.planeY);
        QCOMPARE(after.planeV, before.planeV);
        verifyQuadrants();
    }

    void texturesReallocatedOnlyOnSizeChange()
    {
        Picture(1080, 2400).presentTo(m_item);
        grab();
        QCOMPARE(m_item->textureAllocations(), 3);
        for (int i = 0; i < 3; ++i) {
            Picture(1080, 2400, 8 * i).presentTo(m_item);
            grab();
        }
        QCOMPARE(m_item->textureAllocations(), 3);

        // Rotation: all three planes change size, once.
        Picture(2400, 1080).presentTo(m_item);
        verifyQuadrants();
        QCOMPARE(m_item->textureAllocations(), 6);
        Picture(2400, 1080).presentTo(m_item);
        grab();
        QCOMPARE(m_item->textureAllocations(), 6);

        // 2400 -> 2399 wide: the chroma planes stay 1200 wide, only luma is reallocated.
        Picture(2399, 1080).presentTo(m_item);
        verifyQuadrants();
        QCOMPARE(m_item->textureAllocations(), 7);
    }
};

QTEST_MAIN(TestYuvFboItem)
#include "tst_yuvfboitem.moc"
