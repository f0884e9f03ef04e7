#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QSize>
#include <QString>

// The picture the simulated phone shows: its model and serial on a background colour of its own,
// a frame counter, the fingers that are down with their trail, the last key and the last pasted
// text. Touch positions are fractions of the screen (0..1) so they survive any scaling.
class TestPattern
{
public:
    TestPattern(const QString &model, const QString &serial, int colourIndex);

    // The encoded size for a screen: the longest side at most maxSize (0: no limit), both sides
    // multiples of 8, as video encoders want. Unscaled sides and the limit round down; the scaled
    // short side rounds to the nearest multiple.
    static QSize videoSize(const QSize &screen, int maxSize);
    // The phone's own colour, the same in every run, so a test can tell phones apart by a pixel.
    static QColor backgroundColor(int colourIndex);

    // Android motion actions: 0 down, 1 up, 2 move (5 and 6 are extra fingers down and up).
    void touch(int action, qint64 pointerId, const QPointF &position);
    void key(int keycode, int action);
    void showText(const QString &text);
    void setAnimated(bool animated) { m_animated = animated; }

    // True when the picture would differ from the last one rendered.
    bool changed() const { return m_changed || m_animated; }
    QImage render(const QSize &size);
    qint64 frameCount() const { return m_frameCount; }

private:
    QString m_model;
    QString m_serial;
    QColor m_background;
    QHash<qint64, QPointF> m_fingers;
    QList<QPointF> m_trail;
    QString m_keyText;
    QString m_text;
    qint64 m_frameCount = 0;
    bool m_changed = true;
    bool m_animated = false;
};
