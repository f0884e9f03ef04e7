#include "yuvfboitem.h"

#include "yuvfborenderer.h"

#include <QQuickWindow>

YuvFboItem::YuvFboItem(QQuickItem *parent)
    : QQuickFramebufferObject(parent)
    , m_textureAllocations(std::make_shared<std::atomic_int>(0))
    , m_uploads(std::make_shared<std::atomic_int>(0))
{
    // No mirroring: Qt Quick shows the framebuffer's y = -1 edge, where the renderer's quad puts
    // the first picture row, at the top of the item, so the picture is upright as drawn.
}

YuvFboItem::~YuvFboItem()
{
    if (m_watching && m_source)
        m_source->removeWatcher();
}

QQuickFramebufferObject::Renderer *YuvFboItem::createRenderer() const
{
    return new YuvFboRenderer(m_textureAllocations, m_uploads);
}

void YuvFboItem::setSource(FrameHandoff *source)
{
    if (m_source == source)
        return;
    if (m_watching && m_source)
        m_source->removeWatcher();
    m_watching = false;
    if (m_source)
        m_source->disconnect(this);
    m_source = source;
    if (m_source)
        connect(m_source, &FrameHandoff::frameAvailable, this, &QQuickItem::update);
    updateWatching();
    update();
    emit sourceChanged();
}

void YuvFboItem::setInViewport(bool inViewport)
{
    if (m_inViewport == inViewport)
        return;
    m_inViewport = inViewport;
    updateWatching();
    emit inViewportChanged();
}

void YuvFboItem::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickFramebufferObject::itemChange(change, value);
    if (change == ItemSceneChange) {
        disconnect(m_windowConnection);
        if (value.window)
            m_windowConnection = connect(value.window, &QWindow::visibilityChanged, this, &YuvFboItem::updateWatching);
    }
    if (change == ItemSceneChange || change == ItemVisibleHasChanged)
        updateWatching();
}

void YuvFboItem::updateWatching()
{
    const QQuickWindow *view = window();
    const bool shown = m_source && m_inViewport && isVisible() && view && view->isVisible()
                       && view->visibility() != QWindow::Minimized;
    if (shown == m_watching)
        return;
    m_watching = shown;
    if (shown) {
        m_source->addWatcher();
        update();
    } else if (m_source) {
        m_source->removeWatcher();
    }
    emit shownChanged();
}
