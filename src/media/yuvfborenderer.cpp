#include "yuvfborenderer.h"

#include "yuvfboitem.h"

#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>

#ifndef GL_LUMINANCE
#define GL_LUMINANCE 0x1909
#endif
#ifndef GL_UNPACK_ROW_LENGTH
#define GL_UNPACK_ROW_LENGTH 0x0CF2
#endif

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

namespace {

const char *const VertexShader =
    "#version 120\n"
    "            attribute vec2 aPos;\n"
    "            attribute vec2 aTexCoord;\n"
    "            varying vec2 vTexCoord;\n"
    "            void main(){ gl_Position = vec4(aPos,0.0,1.0); vTexCoord = aTexCoord; }\n"
    "        ";

const char *const FragmentShader =
    "#version 120\n"
    "            varying vec2 vTexCoord;\n"
    "            uniform sampler2D texY;\n"
    "            uniform sampler2D texU;\n"
    "            uniform sampler2D texV;\n"
    "            uniform float limitedRange;\n"
    "            void main(){\n"
    "                float y = texture2D(texY, vTexCoord).r;\n"
    "                float u = texture2D(texU, vTexCoord).r - 0.5;\n"
    "                float v = texture2D(texV, vTexCoord).r - 0.5;\n"
    "                if (limitedRange > 0.5) {\n"
    "                    y = (y - 16.0 / 255.0) * (255.0 / 219.0);\n"
    "                    u = u * (255.0 / 224.0);\n"
    "                    v = v * (255.0 / 224.0);\n"
    "                }\n"
    "                float r = y + 1.402 * v;\n"
    "                float g = y - 0.344136 * u - 0.714136 * v;\n"
    "                float b = y + 1.772 * u;\n"
    "                gl_FragColor = vec4(r,g,b,1.0);\n"
    "            }\n"
    "        ";

// x, y, s, t per vertex, drawn as a triangle strip; the first picture row is at t = 0.
const GLfloat Quad[16] = {
    -1.0f, -1.0f, 0.0f, 0.0f,
    1.0f, -1.0f, 1.0f, 0.0f,
    -1.0f, 1.0f, 0.0f, 1.0f,
    1.0f, 1.0f, 1.0f, 1.0f,
};

} // namespace

YuvFboRenderer::YuvFboRenderer(std::shared_ptr<std::atomic_int> allocations,
                               std::shared_ptr<std::atomic_int> uploads)
    : m_allocations(std::move(allocations))
    , m_uploads(std::move(uploads))
{
    initializeOpenGLFunctions();
    glGenTextures(3, m_textures);
    for (GLuint texture : m_textures) {
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    glBindTexture(GL_TEXTURE_2D, 0);

    m_program = new QOpenGLShaderProgram;
    m_program->addShaderFromSourceCode(QOpenGLShader::Vertex, VertexShader);
    m_program->addShaderFromSourceCode(QOpenGLShader::Fragment, FragmentShader);
    m_program->link();
}

YuvFboRenderer::~YuvFboRenderer()
{
    delete m_program;
    glDeleteTextures(3, m_textures);
}

QOpenGLFramebufferObject *YuvFboRenderer::createFramebufferObject(const QSize &size)
{
    QOpenGLFramebufferObjectFormat format;
    format.setAttachment(QOpenGLFramebufferObject::CombinedDepthStencil);
    return new QOpenGLFramebufferObject(size, format);
}

void YuvFboRenderer::synchronize(QQuickFramebufferObject *item)
{
    FrameHandoff *source = static_cast<YuvFboItem *>(item)->source();
    quint64 serial = 0;
    FrameHandoff::Frame frame = source ? source->latest(&serial) : FrameHandoff::Frame();
    if (source == m_source && serial == m_serial)
        return;
    m_source = source;
    m_serial = serial;
    m_frame = std::move(frame);
    m_frameIsNew = true;
}

void YuvFboRenderer::uploadPlane(GLuint texture, const uint8_t *plane, int width, int height, int stride)
{
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const int oldWidth = m_textureWidths.value(texture);
    const int oldHeight = m_textureHeights.value(texture);
    if (oldWidth == 0 || oldHeight == 0 || oldWidth != width || oldHeight != height) {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE, width, height, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, nullptr);
        m_textureWidths.insert(texture, width);
        m_textureHeights.insert(texture, height);
        if (m_allocations)
            ++*m_allocations;
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, stride);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_LUMINANCE, GL_UNSIGNED_BYTE, plane);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}

void YuvFboRenderer::uploadFrame()
{
    m_frameIsNew = false;
    const AVFrame *frame = m_frame.get();
    m_hasPicture = frame && frame->width > 0 && frame->height > 0 && frame->data[0] && frame->data[1]
                   && frame->data[2] && frame->linesize[0] > 0 && frame->linesize[1] > 0 && frame->linesize[2] > 0
                   && (frame->format == AV_PIX_FMT_YUV420P || frame->format == AV_PIX_FMT_YUVJ420P);
    if (!m_hasPicture) {
        // The planes go with the picture: nothing of it is kept beyond the upload.
        m_frame.reset();
        return;
    }
    const int w = frame->width;
    const int h = frame->height;
    uploadPlane(m_textures[0], frame->data[0], w, h, frame->linesize[0]);
    uploadPlane(m_textures[1], frame->data[1], (w + 1) / 2, (h + 1) / 2, frame->linesize[1]);
    uploadPlane(m_textures[2], frame->data[2], (w + 1) / 2, (h + 1) / 2, frame->linesize[2]);
    m_fullRange = frame->format == AV_PIX_FMT_YUVJ420P || frame->color_range == AVCOL_RANGE_JPEG;
    m_frame.reset();
    if (m_uploads)
        ++*m_uploads;
}

void YuvFboRenderer::render()
{
    QOpenGLFramebufferObject *fbo = framebufferObject();
    glViewport(0, 0, fbo->width(), fbo->height());
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);

    if (m_frameIsNew)
        uploadFrame();
    if (!m_hasPicture)
        return;

    m_program->bind();
    const char *const samplers[3] = {"texY", "texU", "texV"};
    for (int unit = 0; unit < 3; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, m_textures[unit]);
        m_program->setUniformValue(samplers[unit], unit);
    }
    m_program->setUniformValue("limitedRange", m_fullRange ? 0.0f : 1.0f);

    const int position = m_program->attributeLocation("aPos");
    const int texCoord = m_program->attributeLocation("aTexCoord");
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    m_program->enableAttributeArray(position);
    m_program->enableAttributeArray(texCoord);
    m_program->setAttributeArray(position, GL_FLOAT, Quad, 2, 4 * sizeof(GLfloat));
    m_program->setAttributeArray(texCoord, GL_FLOAT, Quad + 2, 2, 4 * sizeof(GLfloat));
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    m_program->disableAttributeArray(position);
    m_program->disableAttributeArray(texCoord);
    m_program->release();

    for (int unit = 2; unit >= 0; --unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
}
