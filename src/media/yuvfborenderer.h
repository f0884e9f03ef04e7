#pragma once

#include "yuvframe.h"

#include <QHash>
#include <QOpenGLFunctions>
#include <QQuickFramebufferObject>

#include <atomic>
#include <memory>

class QOpenGLShaderProgram;

// Draws a YuvFboItem's picture: three one-channel textures, converted to RGB in the fragment
// shader (full-range BT.601). Lives on the scene-graph render thread.
class YuvFboRenderer : public QQuickFramebufferObject::Renderer, protected QOpenGLFunctions
{
public:
    // allocations, when given, is incremented for every texture (re)allocation.
    explicit YuvFboRenderer(std::shared_ptr<std::atomic_int> allocations = {});
    ~YuvFboRenderer() override;

    QOpenGLFramebufferObject *createFramebufferObject(const QSize &size) override;
    void synchronize(QQuickFramebufferObject *item) override;
    void render() override;

private:
    void uploadPlane(GLuint texture, const QByteArray &plane, int width, int height, int stride);

    QOpenGLShaderProgram *m_program = nullptr;
    GLuint m_textures[3] = {0, 0, 0};
    QHash<GLuint, int> m_textureWidths;
    QHash<GLuint, int> m_textureHeights;
    YuvFrame m_frame;
    std::shared_ptr<std::atomic_int> m_allocations;
};
