#include "yuvfborenderer.h"

#include "yuvfboitem.h"

#include <QMutexLocker>
#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>

#ifndef GL_LUMINANCE
#define GL_LUMINANCE 0x1909
#endif
#ifndef GL_UNPACK_ROW_LENGTH
#define GL_UNPACK_ROW_LENGTH 0x0CF2
#endif

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
    "            void main(){\n"
    "                float y = texture2D(texY, vTexCoord).r;\n"
    "                float u = texture2D(texU, vTexCoord).r - 0.5;\n"
    "                float v = texture2D(texV, vTexCoord).r - 0.5;\n"
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

YuvFboRenderer::YuvFboRenderer(std::shared_ptr<std::atomic_int> allocations)
    : m_allocations(std::move(allocations))
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
    auto *yuvItem = static_cast<YuvFboItem *>(item);
    QMutexLocker locker(&yuvItem->m_mutex);
    if (yuvItem->m_hasNewFrame) {
        m_frame = yuvItem->m_frame;
        yuvItem->m_hasNewFrame = false;
    }
}

void YuvFboRenderer::uploadPlane(GLuint texture, const QByteArray &plane, int width, int height, int stride)
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
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_LUMINANCE, GL_UNSIGNED_BYTE, plane.constData());
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}

void YuvFboRenderer::render()
{
    QOpenGLFramebufferObject *fbo = framebufferObject();
    glViewport(0, 0, fbo->width(), fbo->height());
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);

    const int w = m_frame.width;
    const int h = m_frame.height;
    const int cw = (w + 1) / 2;
    const int ch = (h + 1) / 2;
    // A plane shorter than its size claims would make the upload read past its end.
    const bool drawable = w > 0 && h > 0 && !m_frame.planeY.isEmpty()
                          && m_frame.planeY.size() >= qsizetype(m_frame.strideY) * (h - 1) + w
                          && m_frame.planeU.size() >= qsizetype(m_frame.strideU) * (ch - 1) + cw
                          && m_frame.planeV.size() >= qsizetype(m_frame.strideV) * (ch - 1) + cw;
    if (drawable) {
        uploadPlane(m_textures[0], m_frame.planeY, w, h, m_frame.strideY);
        uploadPlane(m_textures[1], m_frame.planeU, cw, ch, m_frame.strideU);
        uploadPlane(m_textures[2], m_frame.planeV, cw, ch, m_frame.strideV);

        m_program->bind();
        const char *const samplers[3] = {"texY", "texU", "texV"};
        for (int unit = 0; unit < 3; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            glBindTexture(GL_TEXTURE_2D, m_textures[unit]);
            m_program->setUniformValue(samplers[unit], unit);
        }

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
    // Keep rendering at the display's rate: every pass uploads the planes again.
    update();
}
