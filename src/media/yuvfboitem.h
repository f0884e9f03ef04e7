#pragma once

#include "yuvframe.h"

#include <QMutex>
#include <QQuickFramebufferObject>
#include <QtQml/qqmlregistration.h>

#include <atomic>
#include <cstdint>
#include <memory>

// Shows one device's live picture: present() copies the YUV planes of each decoded picture and the
// renderer converts them to RGB on the scene-graph render thread.
class YuvFboItem : public QQuickFramebufferObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit YuvFboItem(QQuickItem *parent = nullptr);

    Renderer *createRenderer() const override;

    // The picture waiting for the renderer (or the last one it took, if none is newer).
    YuvFrame pendingFrame() const;
    bool hasNewFrame() const;
    // How many times the renderer has (re)allocated a plane texture; three per picture size.
    int textureAllocations() const { return m_textureAllocations->load(); }

public slots:
    void present(int w, int h, const uint8_t *y, int strideY, const uint8_t *u, int strideU,
                 const uint8_t *v, int strideV);
    void clearFrame();

private:
    friend class YuvFboRenderer;

    mutable QMutex m_mutex;
    YuvFrame m_frame;
    bool m_hasNewFrame = false;
    // Shared with the renderer, which may outlive the item by a frame.
    std::shared_ptr<std::atomic_int> m_textureAllocations;
};
