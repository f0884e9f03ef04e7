#pragma once

#include <QImage>
#include <QMutex>
#include <QSize>
#include <QString>

struct AVFrame;
struct SwsContext;

// Turns decoded pictures into JPEG files. Each decoder has one writer, which keeps that decoder's
// RGB scaler; the writer is shared with the running screenshot task so the task may outlive the
// decoder safely.
class ScreenshotWriter
{
public:
    static constexpr int MaxWidth = 1920;
    static constexpr int JpegQuality = 85;

    ScreenshotWriter() = default;
    ~ScreenshotWriter();
    ScreenshotWriter(const ScreenshotWriter &) = delete;
    ScreenshotWriter &operator=(const ScreenshotWriter &) = delete;

    // The screenshot folder with a trailing "/", as start-up set it; a changed setting takes effect
    // after a restart.
    static QString folder();
    static void setFolder(const QString &folder);
    // "<serial>_<yyyyMMdd_hhmmss>_<random 1000..9998>.jpg", made safe for any file system.
    static QString fileName(const QString &serial);
    // Pictures wider than MaxWidth are scaled down to it; the height is truncated.
    static QSize targetSize(int width, int height);

    // Converts to RGB888 at targetSize; a null image when the frame is empty or cannot be scaled.
    QImage toImage(const AVFrame *frame);
    // Writes the frame as folder + fileName(serial). The path tried is stored in *path even when
    // saving fails. The folder is created, with its parents, once per process.
    bool save(const AVFrame *frame, const QString &folder, const QString &serial, QString *path);

private:
    // What m_scaler was built for.
    struct ScalerGeometry
    {
        int srcWidth = 0;
        int srcHeight = 0;
        int srcFormat = -1;
        int dstWidth = 0;
        int dstHeight = 0;
        bool operator==(const ScalerGeometry &o) const
        {
            return srcWidth == o.srcWidth && srcHeight == o.srcHeight && srcFormat == o.srcFormat
                   && dstWidth == o.dstWidth && dstHeight == o.dstHeight;
        }
    };

    QMutex m_mutex;
    SwsContext *m_scaler = nullptr;
    ScalerGeometry m_scalerGeometry;
};
