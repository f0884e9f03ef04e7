#pragma once

#include "framehandoff.h"

#include <QPointer>
#include <QQuickFramebufferObject>

#include <atomic>
#include <memory>

// Shows one device's live picture, taken from its frame handoff: the render thread references the
// newest decoded picture and uploads its planes; nothing is copied on the GUI thread, and nothing
// is drawn until a new picture comes. While the item is on screen it watches the handoff, so the
// phone's decoding runs only while somebody can see it.
class YuvFboItem : public QQuickFramebufferObject
{
    Q_OBJECT
    Q_PROPERTY(FrameHandoff *source READ source WRITE setSource NOTIFY sourceChanged)
    // Set by a scrolling container: false while the item is scrolled out of sight.
    Q_PROPERTY(bool inViewport READ inViewport WRITE setInViewport NOTIFY inViewportChanged)
    Q_PROPERTY(bool shown READ isShown NOTIFY shownChanged)

public:
    explicit YuvFboItem(QQuickItem *parent = nullptr);
    ~YuvFboItem() override;

    Renderer *createRenderer() const override;

    FrameHandoff *source() const { return m_source; }
    void setSource(FrameHandoff *source);
    bool inViewport() const { return m_inViewport; }
    void setInViewport(bool inViewport);
    // Visible, in its window's view and the window not minimised.
    bool isShown() const { return m_watching; }

    // How many times the renderer has (re)allocated a plane texture; three per picture size.
    int textureAllocations() const { return m_textureAllocations->load(); }
    // How many pictures the renderer has uploaded.
    int uploads() const { return m_uploads->load(); }

signals:
    void sourceChanged();
    void inViewportChanged();
    void shownChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    void updateWatching();

    QPointer<FrameHandoff> m_source;
    bool m_inViewport = true;
    bool m_watching = false;
    QMetaObject::Connection m_windowConnection;
    // Shared with the renderer, which may outlive the item by a frame.
    std::shared_ptr<std::atomic_int> m_textureAllocations;
    std::shared_ptr<std::atomic_int> m_uploads;
};
