#include "screenshotwriter.h"

#include "safefilename.h"

#include <QDateTime>
#include <QDir>
#include <QMutexLocker>
#include <QRandomGenerator>

#include <mutex>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/macros.h>
#include <libavutil/mem.h>
#include <libswscale/swscale.h>
}


ScreenshotWriter::~ScreenshotWriter()
{
    sws_freeContext(m_scaler);
}

namespace {
QMutex folderMutex;
QString screenshotFolder;
}

QString ScreenshotWriter::folder()
{
    QMutexLocker lock(&folderMutex);
    return screenshotFolder;
}

void ScreenshotWriter::setFolder(const QString &folder)
{
    QMutexLocker lock(&folderMutex);
    screenshotFolder = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

QString ScreenshotWriter::fileName(const QString &serial)
{
    return SafeFileName::make(serial, QStringLiteral("_%1_%2.jpg")
                                          .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss")),
                                               QString::number(QRandomGenerator::global()->bounded(1000, 9999))));
}

QSize ScreenshotWriter::targetSize(int width, int height)
{
    if (width > MaxWidth)
        return QSize(MaxWidth, int(qint64(height) * MaxWidth / width));
    return QSize(width, height);
}

QImage ScreenshotWriter::toImage(const AVFrame *frame)
{
    if (!frame || frame->width <= 0 || frame->height <= 0)
        return QImage();

    const QSize target = targetSize(frame->width, frame->height);
    // libswscale aborts the process on a format it cannot read.
    if (target.isEmpty() || !sws_isSupportedInput(AVPixelFormat(frame->format)))
        return QImage();
    const ScalerGeometry wanted{frame->width, frame->height, frame->format, target.width(), target.height()};

    QMutexLocker locker(&m_mutex);
    // A rotated phone or a new session brings frames of another size or format.
    if (!m_scaler || !(m_scalerGeometry == wanted)) {
        sws_freeContext(m_scaler);
        m_scaler = sws_getContext(frame->width, frame->height, AVPixelFormat(frame->format), target.width(),
                                  target.height(), AV_PIX_FMT_RGB24, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr);
        m_scalerGeometry = m_scaler ? wanted : ScalerGeometry{};
    }
    if (!m_scaler)
        return QImage();

    // The SIMD converters write whole blocks of pixels and may run past the end of a row; rows
    // are aligned and one spare row keeps the last row's overrun inside the buffer.
    const int stride = FFALIGN(target.width() * 3, 64);
    auto *pixels = static_cast<uint8_t *>(av_malloc(size_t(stride) * size_t(target.height() + 1)));
    if (!pixels)
        return QImage();
    QImage image(pixels, target.width(), target.height(), stride, QImage::Format_RGB888,
                 [](void *p) { av_free(p); }, pixels);
    uint8_t *dst[4] = {pixels, nullptr, nullptr, nullptr};
    int dstStride[4] = {stride, 0, 0, 0};
    if (sws_scale(m_scaler, frame->data, frame->linesize, 0, frame->height, dst, dstStride) != target.height())
        return QImage();
    return image;
}

bool ScreenshotWriter::save(const AVFrame *frame, const QString &folder, const QString &serial, QString *path)
{
    if (!frame)
        return false;
    static std::once_flag folderChecked;
    std::call_once(folderChecked, [&folder] {
        if (!QDir(folder).exists())
            QDir().mkpath(folder);
    });

    const QString filePath = folder + fileName(serial);
    if (path)
        *path = filePath;
    const QImage image = toImage(frame);
    if (image.isNull())
        return false;
    return image.save(filePath, "JPEG", JpegQuality);
}
