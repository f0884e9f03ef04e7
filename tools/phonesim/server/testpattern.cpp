#include "testpattern.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

constexpr int maxTrailPoints = 200;

// Rounding down keeps the picture within the screen and within maxSize.
int floorToMultipleOf8(double value)
{
    return std::max(8, int(value) / 8 * 8);
}

// A scaled side is rounded to the nearest multiple, which keeps the aspect ratio closest.
int roundToMultipleOf8(double value)
{
    return std::max(8, int(std::lround(value / 8.0)) * 8);
}

} // namespace

TestPattern::TestPattern(const QString &model, const QString &serial, int colourIndex)
    : m_model(model)
    , m_serial(serial)
    , m_background(backgroundColor(colourIndex))
{
}

QSize TestPattern::videoSize(const QSize &screen, int maxSize)
{
    const bool portrait = screen.height() >= screen.width();
    const int major = portrait ? screen.height() : screen.width();
    const int minor = portrait ? screen.width() : screen.height();
    int newMajor = floorToMultipleOf8(major);
    int newMinor = floorToMultipleOf8(minor);
    if (maxSize > 0 && major > maxSize) {
        newMajor = floorToMultipleOf8(maxSize);
        newMinor = roundToMultipleOf8(double(minor) * newMajor / major);
    }
    return portrait ? QSize(newMinor, newMajor) : QSize(newMajor, newMinor);
}

QColor TestPattern::backgroundColor(int colourIndex)
{
    // Steps of the golden angle keep any run of consecutive indexes far apart on the colour wheel.
    const int hue = int(std::fmod(colourIndex * 137.508, 360.0));
    return QColor::fromHsv(hue, 170, 150);
}

void TestPattern::touch(int action, qint64 pointerId, const QPointF &position)
{
    const int kind = action & 0xff;
    if (kind == 0 || kind == 5) {
        if (m_fingers.isEmpty())
            m_trail.clear();
        m_fingers.insert(pointerId, position);
    } else if (kind == 1 || kind == 6 || kind == 3) {
        m_fingers.remove(pointerId);
    } else {
        m_fingers.insert(pointerId, position);
    }
    m_trail.append(position);
    if (m_trail.size() > maxTrailPoints)
        m_trail.removeFirst();
    m_changed = true;
}

void TestPattern::key(int keycode, int action)
{
    m_keyText = QString("key %1 %2").arg(keycode).arg(action == 0 ? "down" : "up");
    m_changed = true;
}

void TestPattern::showText(const QString &text)
{
    m_text = text;
    m_changed = true;
}

QImage TestPattern::render(const QSize &size)
{
    ++m_frameCount;
    m_changed = false;
    QImage image(size, QImage::Format_RGB32);
    image.fill(m_background);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const int w = size.width();
    const int h = size.height();
    const int unit = std::max(6, std::min(w, h) / 18);
    // Text stays clear of a margin so the corners always show the phone's own colour.
    const QRect area(unit, unit, w - 2 * unit, h - 2 * unit);

    QFont font("DejaVu Sans");
    font.setPixelSize(unit * 3 / 2);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(area, Qt::AlignTop | Qt::AlignHCenter | Qt::TextWordWrap, m_model);
    font.setPixelSize(unit);
    font.setBold(false);
    painter.setFont(font);
    painter.drawText(area.adjusted(0, unit * 4, 0, 0), Qt::AlignTop | Qt::AlignHCenter, m_serial);
    painter.drawText(area.adjusted(0, unit * 6, 0, 0), Qt::AlignTop | Qt::AlignHCenter,
                     QString("frame %1").arg(m_frameCount));
    if (!m_keyText.isEmpty())
        painter.drawText(area.adjusted(0, unit * 8, 0, 0), Qt::AlignTop | Qt::AlignHCenter, m_keyText);
    if (!m_text.isEmpty())
        painter.drawText(area, Qt::AlignBottom | Qt::AlignHCenter | Qt::TextWordWrap, m_text);

    // A bar sweeping across makes every frame differ when the picture is animated.
    if (m_animated) {
        const int x = int(m_frameCount * 4 % std::max(1, w));
        painter.fillRect(QRect(x, h / 2 - unit / 4, unit, unit / 2), Qt::black);
    }

    auto toPixels = [&](const QPointF &p) { return QPointF(p.x() * w, p.y() * h); };
    if (m_trail.size() > 1) {
        QPainterPath path(toPixels(m_trail.first()));
        for (int i = 1; i < m_trail.size(); ++i)
            path.lineTo(toPixels(m_trail[i]));
        painter.setPen(QPen(QColor(255, 255, 0), std::max(2, unit / 4)));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    for (const QPointF &finger : std::as_const(m_fingers))
        painter.drawEllipse(toPixels(finger), unit * 0.7, unit * 0.7);
    return image;
}
