#include "yuvfboitem.h"

#include "yuvfborenderer.h"

#include <QMutexLocker>

#include <cstring>

namespace {

QByteArray packPlane(const uint8_t *src, int stride, int width, int height)
{
    QByteArray plane(qsizetype(width) * height, Qt::Uninitialized);
    char *dst = plane.data();
    for (int row = 0; row < height; ++row)
        std::memcpy(dst + qsizetype(row) * width, src + qsizetype(row) * stride, size_t(width));
    return plane;
}

} // namespace

YuvFboItem::YuvFboItem(QQuickItem *parent)
    : QQuickFramebufferObject(parent)
    , m_textureAllocations(std::make_shared<std::atomic_int>(0))
{
    // No mirroring: Qt Quick shows the framebuffer's y = -1 edge, where the renderer's quad puts
    // the first picture row, at the top of the item, so the picture is upright as drawn.
}

QQuickFramebufferObject::Renderer *YuvFboItem::createRenderer() const
{
    return new YuvFboRenderer(m_textureAllocations);
}

YuvFrame YuvFboItem::pendingFrame() const
{
    QMutexLocker locker(&m_mutex);
    return m_frame;
}

bool YuvFboItem::hasNewFrame() const
{
    QMutexLocker locker(&m_mutex);
    return m_hasNewFrame;
}

void YuvFboItem::present(int w, int h, const uint8_t *y, int strideY, const uint8_t *u, int strideU,
                         const uint8_t *v, int strideV)
{
    if (!y || !u || !v || w < 1 || h < 1)
        return;

    const int cw = (w + 1) / 2;
    const int ch = (h + 1) / 2;
    YuvFrame frame;
    frame.width = w;
    frame.height = h;
    frame.strideY = w;
    frame.strideU = cw;
    frame.strideV = cw;
    frame.planeY = packPlane(y, strideY, w, h);
    frame.planeU = packPlane(u, strideU, cw, ch);
    frame.planeV = packPlane(v, strideV, cw, ch);

    {
        QMutexLocker locker(&m_mutex);
        std::swap(m_frame, frame);
        m_hasNewFrame = true;
    }
    update();
}

void YuvFboItem::clearFrame()
{
    {
        QMutexLocker locker(&m_mutex);
        m_frame = YuvFrame();
        // The renderer keeps its picture until it is handed a new one; the empty one is new.
        m_hasNewFrame = true;
    }
    update();
}
