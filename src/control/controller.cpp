#include "controller.h"

#include "controlmsgencoder.h"
#include "inputmapping.h"
#include "keymapplayer.h"

#include <QAbstractSocket>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

int swipeIntervalMs = 10;

constexpr qint64 kMousePointerId = -2;

// Android key codes of the action buttons.
enum ActionKey : qint32 {
    KeyHome = 3,
    KeyBack = 4,
    KeyVolumeUp = 24,
    KeyVolumeDown = 25,
    KeyAppSwitch = 187,
    KeySleep = 223,
    KeyWakeUp = 224,
    KeyCut = 277,
    KeyCopy = 278,
    KeyPaste = 279,
};

// Device pixels are whole; a zero or negative show size must not turn into undefined conversions.
qint32 toDevicePixel(double value)
{
    if (std::isnan(value))
        return 0;
    const double truncated = std::trunc(value);
    if (truncated >= double(std::numeric_limits<qint32>::max()))
        return std::numeric_limits<qint32>::max();
    if (truncated <= double(std::numeric_limits<qint32>::min()))
        return std::numeric_limits<qint32>::min();
    return qint32(truncated);
}

} // namespace

Controller::Controller(QObject *parent, QIODevice *socket)
    : QObject(parent)
    , m_socket(socket)
    , m_keyMap(new KeyMapPlayer(
          [this](qint64 pointerId, InputEvent::Type eventType, const QPointF &fraction) {
              processMouseEvent(pointerId, eventType, fraction.x() * m_showSize.width(),
                                fraction.y() * m_showSize.height(), Qt::LeftButton, Qt::LeftButton);
          },
          this))
{
}

Controller::~Controller() = default;

void Controller::setSwipeInterval(int milliseconds)
{
    swipeIntervalMs = milliseconds;
}

void Controller::setKeyMappingProfile(const KeyMappingProfile *profile)
{
    m_keyMap->setProfile(profile);
}

ControlPosition Controller::position(double x, double y) const
{
    return {QPoint(toDevicePixel(x * m_frameSize.width() / m_showSize.width()),
                   toDevicePixel(y * m_frameSize.height() / m_showSize.height())),
            m_frameSize};
}

void Controller::sendKeyPress(qint32 keycode)
{
    ControlMsg down = ControlMsg::injectKeycode(ControlMsg::KeyDown, keycode, 0, 0);
    send(down);
    ControlMsg up = ControlMsg::injectKeycode(ControlMsg::KeyUp, keycode, 0, 0);
    send(up);
}

void Controller::actionHome() { sendKeyPress(KeyHome); }
void Controller::actionShowTaskList() { sendKeyPress(KeyAppSwitch); }
void Controller::actionBack() { sendKeyPress(KeyBack); }

void Controller::actionSwipeUp()
{
    const QSize show = m_showSize;
    swipe(QPointF(show.width() / 2.0, show.height() / 5.0), 5);
}

void Controller::actionSwipeDown()
{
    const QSize show = m_showSize;
    swipe(QPointF(show.width() / 2.0, 4.0 * show.height() / 5.0), 10);
}

void Controller::actionSwipeLeft()
{
    const QSize show = m_showSize;
    swipe(QPointF(show.width() / 5.0, show.height() / 2.0), 10);
}

void Controller::actionSwipeRight()
{
    const QSize show = m_showSize;
    swipe(QPointF(4.0 * show.width() / 5.0, show.height() / 2.0), 10);
}

void Controller::swipe(const QPointF &end, int steps)
{
    const QSize show = m_showSize;
    const QPointF start(show.width() / 2.0, show.height() / 2.0);
    processMouseEvent(kMousePointerId, InputEvent::MousePress, start.x(), start.y(), Qt::LeftButton,
                      Qt::LeftButton);

    // Each step is its own message, so group control replays the gesture as it happens.
    auto *timer = new QTimer(this);
    timer->setInterval(swipeIntervalMs);
    connect(timer, &QTimer::timeout, this, [this, timer, start, end, steps, step = 0]() mutable {
        ++step;
        if (step <= steps) {
            const float fraction = float(step) / float(steps);
            const QPointF point = start + (end - start) * fraction;
            processMouseEvent(kMousePointerId, InputEvent::MouseMove, point.x(), point.y(), Qt::LeftButton,
                              Qt::LeftButton);
            return;
        }
        processMouseEvent(kMousePointerId, InputEvent::MouseRelease, end.x(), end.y(), Qt::LeftButton,
                          Qt::LeftButton);
        timer->stop();
        timer->deleteLater();
    });
    timer->start();
}

void Controller::actionSleep() { sendKeyPress(KeySleep); }
void Controller::actionWakeUp() { sendKeyPress(KeyWakeUp); }
void Controller::actionVolumeUp() { sendKeyPress(KeyVolumeUp); }
void Controller::actionVolumeDown() { sendKeyPress(KeyVolumeDown); }
void Controller::actionCopy() { sendKeyPress(KeyCopy); }
void Controller::actionPaste() { sendKeyPress(KeyPaste); }
void Controller::actionCut() { sendKeyPress(KeyCut); }

void Controller::actionRotateScreen()
{
    ControlMsg msg = ControlMsg::ofType(ControlMsgType::RotateDevice);
    send(msg);
}

void Controller::actionInputText(const QString &text)
{
    // Sequence 0: no acknowledgement is wanted back.
    ControlMsg msg = ControlMsg::setClipboard(0, text, true);
    send(msg);
}

void Controller::handleMouseEvent(InputEvent::Type eventType, double x, double y, int button, int buttons)
{
    processMouseEvent(kMousePointerId, eventType, x, y, button, buttons);
}

void Controller::processMouseEvent(qint64 pointerId, InputEvent::Type eventType, double x, double y, int button, int buttons)
{
    const int action = InputMapping::touchAction(eventType);
    if (action < 0)
        return;
    const float pressure = action == ControlMsg::TouchDown ? 1.0f : 0.0f;
    ControlMsg msg = ControlMsg::injectTouch(quint64(pointerId), quint32(action), InputMapping::actionButton(button),
                                             InputMapping::buttons(buttons), position(x, y), pressure);
    send(msg);
}

void Controller::handleKeyEvent(InputEvent::Type eventType, int key, int modifiers, const QString &text)
{
    if (m_keyMap->handleKey(eventType, key, modifiers))
        return;
    const int action = InputMapping::keyAction(eventType);
    if (action < 0)
        return;
    // Only the press becomes copy, paste or cut; its release goes out as the plain letter.
    if (action == ControlMsg::KeyDown && (modifiers & Qt::ControlModifier)) {
        switch (key) {
        case Qt::Key_C: actionCopy(); return;
        case Qt::Key_V: actionPaste(); return;
        case Qt::Key_X: actionCut(); return;
        default: break;
        }
    }
    const int keycode = InputMapping::androidKeyCode(key, modifiers);
    if (keycode < 0) {
        // A letter that has no Android key code (é, ß, ü on their own keys) arrives as text.
        const bool shortcut = modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
        if (action == ControlMsg::KeyDown && !shortcut && InputMapping::isNonAsciiText(text))
            actionInputText(text);
        return;
    }
    ControlMsg msg = ControlMsg::injectKeycode(quint32(action), keycode, 0, InputMapping::metaState(modifiers));
    send(msg);
}

void Controller::releaseKeyMappings()
{
    m_keyMap->releaseAll();
}

void Controller::handleWheelEvent(double x, double y, double angleDeltaX, double angleDeltaY, int buttons)
{
    if (angleDeltaX == 0.0 && angleDeltaY == 0.0)
        return;
    // One notch is 120. Qt counts a tilt to the left as positive, Android a scroll to the right;
    // both count a turn away from the user as positive.
    const float hscroll = float(-angleDeltaX / 120.0);
    const float vscroll = float(angleDeltaY / 120.0);
    ControlMsg msg = ControlMsg::injectScroll(position(x, y), hscroll, vscroll, InputMapping::buttons(buttons));
    send(msg);
}

void Controller::handleInputMethodText(const QString &text)
{
    if (text.isEmpty())
        return;
    actionInputText(text);
}

void Controller::send(const ControlMsg &msg)
{
    if (m_socket) {
        m_socket->write(ControlMsgEncoder::serialize(msg));
        if (auto *socket = qobject_cast<QAbstractSocket *>(m_socket.data()))
            socket->flush();
    }
    emit messageSent(msg);
}

void Controller::groupSend(const ControlMsg &msg)
{
    if (m_clickDelayMilliSeconds <= 0) {
        send(msg);
        return;
    }
    // The copy shares the text with the original and lives until the timer has fired or the
    // controller has gone.
    QTimer::singleShot(m_clickDelayMilliSeconds, this, [this, copy = msg]() mutable { send(copy); });
}

void Controller::setClickDelayMilliSeconds(int milliSeconds)
{
    m_clickDelayMilliSeconds = milliSeconds;
}

void Controller::resetVideo()
{
    ControlMsg msg = ControlMsg::ofType(ControlMsgType::ResetVideo);
    send(msg);
}
