#pragma once

#include "framehandoff.h"

#include <QHash>
#include <QOpenGLFunctions>
#include <QQuickFramebufferObject>

#include <atomic>
#include <memory>

class QOpenGLShaderProgram;

// Draws a YuvFboItem's picture: three one-channel textures, converted to RGB in the fragment
// shader (BT.601, limited or full range as the picture says). Lives on the scene-graph render
// thread; planes are uploaded only when a new picture came.
class YuvFboRenderer : public QQuickFramebufferObject::Renderer, protected QOpenGLFunctions
{
public:
    // allocations, when given, is incremented for every texture (re)allocation.
    // allocations and uploads, when given, count texture (re)allocations and picture uploads.
    explicit YuvFboRenderer(std::shared_ptr<std::atomic_int> allocations = {},
                            std::shared_ptr<std::atomic_int> uploads = {});
    ~YuvFboRenderer() override;

    QOpenGLFramebufferObject *createFramebufferObject(const QSize &size) override;
    void synchronize(QQuickFramebufferObject *item) override;
    void render() override;

private:
    void uploadPlane(GLuint texture, const uint8_t *plane, int width, int height, int stride);
    void uploadFrame();

    QOpenGLShaderProgram *m_program = nullptr;
    GLuint m_textures[3] = {0, 0, 0};
    QHash<GLuint, int> m_textureWidths;
    QHash<GLuint, int> m_textureHeights;
    FrameHandoff::Frame m_frame;
    // Identifies the picture last taken; the source is compared, never dereferenced.
    const FrameHandoff *m_source = nullptr;
    quint64 m_serial = 0;
    bool m_frameIsNew = false;
    bool m_hasPicture = false;
    bool m_fullRange = false;
    std::shared_ptr<std::atomic_int> m_allocations;
    std::shared_ptr<std::atomic_int> m_uploads;
};
