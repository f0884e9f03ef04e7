#include "controller.h"

#include "adbclient.h"
#include "adbpool.h"
#include "adbworkpool.h"
#include "controlmsgencoder.h"
#include "device.h"
#include "inputmapping.h"
#include "keymappingprofile.h"

#include <QAbstractSocket>
#include <QDir>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

int swipeIntervalMs = 10;

constexpr qint64 kMousePointerId = -2;
constexpr int kUploadTimeoutMs = 5000;
constexpr int kLongInfoTimeoutMs = 100000;

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

Controller::~Controller()
{
    // Work still under way goes with the session: its adb processes are killed, its clean-up still
    // runs and its verdict ("Cancelled") still reaches the phone's cell.
    for (const quint64 id : std::as_const(m_tasks))
        AdbWorkPool::cancel(id);
}

Controller::Controller(QObject *parent, QIODevice *socket)
    : QObject(parent)
    , m_socket(socket)
    , m_device(qobject_cast<Device *>(parent))
{
}

void Controller::setSwipeInterval(int milliseconds)
{
    swipeIntervalMs = milliseconds;
}

QSize Controller::showSize() const
{
    return m_device ? m_device->showSize() : QSize(-1, -1);
}

QSize Controller::frameSize() const
{
    return m_device ? m_device->frameSize() : QSize(-1, -1);
}

void Controller::report(const QString &message, const QString &type, int timeout)
{
    if (m_device)
        emit m_device->deviceMessage(message, type, timeout);
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
    const QSize show = showSize();
    swipe(QPointF(show.width() / 2.0, show.height() / 5.0), 5);
}

void Controller::actionSwipeDown()
{
    const QSize show = showSize();
    swipe(QPointF(show.width() / 2.0, 4.0 * show.height() / 5.0), 10);
}

void Controller::actionSwipeLeft()
{
    const QSize show = showSize();
    swipe(QPointF(show.width() / 5.0, show.height() / 2.0), 10);
}

void Controller::actionSwipeRight()
{
    const QSize show = showSize();
    swipe(QPointF(4.0 * show.width() / 5.0, show.height() / 2.0), 10);
}

void Controller::swipe(const QPointF &end, int steps)
{
    const QSize show = showSize();
    const QPointF start(show.width() / 2.0, show.height() / 2.0);
    processMouseEvent(kMousePointerId, InputMapping::MousePress, start.x(), start.y(), Qt::LeftButton,
                      Qt::LeftButton);

    // Each step is its own message, so group control replays the gesture as it happens.
    auto *timer = new QTimer(this);
    timer->setInterval(swipeIntervalMs);
    connect(timer, &QTimer::timeout, this, [this, timer, start, end, steps, step = 0]() mutable {
        ++step;
        if (step <= steps) {
            const float fraction = float(step) / float(steps);
            const QPointF point = start + (end - start) * fraction;
            processMouseEvent(kMousePointerId, InputMapping::MouseMove, point.x(), point.y(), Qt::LeftButton,
                              Qt::LeftButton);
            return;
        }
        processMouseEvent(kMousePointerId, InputMapping::MouseRelease, end.x(), end.y(), Qt::LeftButton,
                          Qt::LeftButton);
        timer->stop();
        timer->deleteLater();
    });
    timer->start();
}

void Controller::actionReboot()
{
    if (m_device)
        AdbPool::post([serial = m_device->adbConnectionSerial()] { AdbClient::reboot(serial); });
}

void Controller::actionShutdown()
{
    if (m_device)
        AdbPool::post([serial = m_device->adbConnectionSerial()] { AdbClient::shutdown(serial); });
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

void Controller::runInBackground(const QList<AdbTask::Step> &steps, const QString &successText,
                                 const QString &failureText, int failureTimeout)
{
    auto *task = new AdbTask(steps);
    const quint64 id = task->id();
    m_tasks.insert(id);
    connect(task, &AdbTask::finished, this, [this, id] { m_tasks.remove(id); });
    // The phone outlives its session, so the answer goes to it directly.
    if (m_device) {
        connect(task, &AdbTask::finished, m_device.data(),
                [device = m_device.data(), successText, failureText, failureTimeout](const AdbResult &result) {
                    if (result.ok())
                        emit device->deviceMessage(successText, "success", 2000);
                    else
                        emit device->deviceMessage(failureText + ": " + result.text, "error", failureTimeout);
                });
    }
    AdbWorkPool::instance()->submit(task);
}

void Controller::installApk(const QString &apkPath)
{
    if (!m_device)
        return;
    report(tr("Installing APK"), "info", kLongInfoTimeoutMs);
    runInBackground(AdbTask::installSteps(m_device->adbConnectionSerial(), apkPath), tr("APK installed"),
                    tr("APK installation failed"), kLongInfoTimeoutMs);
}

void Controller::uploadFile(const QString &filePath)
{
    if (!m_device)
        return;
    runInBackground(AdbTask::uploadSteps(m_device->adbConnectionSerial(), filePath), tr("File uploaded"),
                    tr("File upload failed"), kUploadTimeoutMs);
}

void Controller::actionInputText(const QString &text)
{
    // Sequence 0: no acknowledgement is wanted back.
    ControlMsg msg = ControlMsg::setClipboard(0, text, true);
    send(msg);
}

void Controller::handleMouseEvent(int eventType, double x, double y, int button, int buttons)
{
    processMouseEvent(kMousePointerId, eventType, x, y, button, buttons);
}

void Controller::processMouseEvent(qint64 pointerId, int eventType, double x, double y, int button, int buttons)
{
    const int action = InputMapping::touchAction(eventType);
    if (action < 0)
        return;
    const QSize frame = frameSize();
    const QSize show = showSize();
    const ControlPosition position{QPoint(toDevicePixel(x * frame.width() / show.width()),
                                          toDevicePixel(y * frame.height() / show.height())),
                                   frame};
    const float pressure = action == ControlMsg::TouchDown ? 1.0f : 0.0f;
    ControlMsg msg = ControlMsg::injectTouch(quint64(pointerId), quint32(action), InputMapping::actionButton(button),
                                             InputMapping::buttons(buttons), position, pressure);
    send(msg);
}

void Controller::handleKeyEvent(int eventType, int key, int modifiers, const QString &text)
{
    if (handleKeyMapping(eventType, key, modifiers))
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

namespace {

constexpr int kMappingPointerIds = 10;
constexpr int kTapDownMs = 30;
constexpr int kTapGapMs = 30;

// How many moves a mapped swipe makes: about one per 16 ms frame, from 10 to 60.
int swipeSteps(int duration)
{
    if (duration <= 159)
        return 10;
    if (duration <= 975)
        return duration / 16;
    return 60;
}

} // namespace

qint64 Controller::takeMappingPointerId()
{
    // Ids rotate through 0..9; one still held by another key is skipped so two fingers never merge.
    for (int tries = 0; tries < kMappingPointerIds; ++tries) {
        const int id = m_nextMappingPointerId;
        m_nextMappingPointerId = (m_nextMappingPointerId + 1) % kMappingPointerIds;
        const bool held = m_tappingPointerIds.contains(id)
                          || std::any_of(m_heldMappings.cbegin(), m_heldMappings.cend(),
                                         [id](const HeldMapping &h) { return h.pointerId == id; });
        if (!held)
            return id;
    }
    return m_nextMappingPointerId;
}

void Controller::mappedTouch(qint64 pointerId, int eventType, const QPointF &fraction)
{
    const QSize show = showSize();
    processMouseEvent(pointerId, eventType, fraction.x() * show.width(), fraction.y() * show.height(), Qt::LeftButton,
                      Qt::LeftButton);
}

int Controller::heldMappingIndex(int keyCode, int modifiers) const
{
    for (int i = 0; i < m_heldMappings.size(); ++i) {
        if (m_heldMappings[i].keyCode == keyCode && m_heldMappings[i].modifiers == modifiers)
            return i;
    }
    // A modifier let go before the key: the key's release still lifts its finger.
    for (int i = 0; i < m_heldMappings.size(); ++i) {
        if (m_heldMappings[i].keyCode == keyCode)
            return i;
    }
    return -1;
}

bool Controller::handleKeyMapping(int eventType, int key, int modifiers)
{
    if (eventType == InputMapping::KeyRelease) {
        const int held = heldMappingIndex(key, modifiers);
        if (held >= 0) {
            const HeldMapping h = m_heldMappings.takeAt(held);
            mappedTouch(h.pointerId, InputMapping::MouseRelease, h.releaseAt);
            return true;
        }
    }
    const KeyMappingProfile *profile = m_device ? m_device->currentKeyMappingProfile() : nullptr;
    const KeyMappingEntry *found = profile ? profile->find(key, modifiers) : nullptr;
    if (!found)
        return false;
    if (eventType != InputMapping::KeyPress)
        return true;
    // Keyboard auto-repeat of a key whose finger is down changes nothing.
    if (heldMappingIndex(key, modifiers) >= 0)
        return true;
    const KeyMappingEntry entry = *found;
    if (entry.type == KeyMappingEntry::Tap && entry.count < 1)
        return true;

    const qint64 id = takeMappingPointerId();
    if (entry.type == KeyMappingEntry::Tap) {
        const QPointF point(entry.x, entry.y);
        if (entry.count == 1) {
            m_heldMappings.append({entry.keyCode, entry.modifiers, id, point});
            mappedTouch(id, InputMapping::MousePress, point);
            return true;
        }
        m_tappingPointerIds.insert(id);
        for (int tap = 0; tap < entry.count; ++tap) {
            const int downAt = tap * (kTapDownMs + kTapGapMs);
            const bool last = tap == entry.count - 1;
            if (tap == 0)
                mappedTouch(id, InputMapping::MousePress, point);
            else
                QTimer::singleShot(downAt, this,
                                   [this, id, point] { mappedTouch(id, InputMapping::MousePress, point); });
            QTimer::singleShot(downAt + kTapDownMs, this, [this, id, point, last] {
                mappedTouch(id, InputMapping::MouseRelease, point);
                if (last)
                    m_tappingPointerIds.remove(id);
            });
        }
        return true;
    }

    const QPointF start(entry.startX, entry.startY);
    const QPointF end(entry.endX, entry.endY);
    m_heldMappings.append({entry.keyCode, entry.modifiers, id, end});
    mappedTouch(id, InputMapping::MousePress, start);
    const int steps = swipeSteps(entry.duration);
    const int interval = entry.duration / steps;
    for (int step = 1; step <= steps; ++step) {
        const float fraction = float(step) / float(steps);
        const QPointF point = start + (end - start) * fraction;
        // The moves run on their own: a key let go early lifts the finger at the end point
        // while the remaining moves still follow.
        if (step == 1)
            mappedTouch(id, InputMapping::MouseMove, point);
        else
            QTimer::singleShot((step - 1) * interval, this,
                               [this, id, point] { mappedTouch(id, InputMapping::MouseMove, point); });
    }
    return true;
}

void Controller::releaseKeyMappings()
{
    const QList<HeldMapping> held = std::exchange(m_heldMappings, {});
    for (const HeldMapping &h : held)
        mappedTouch(h.pointerId, InputMapping::MouseRelease, h.releaseAt);
}

void Controller::handleWheelEvent(double x, double y, double angleDeltaX, double angleDeltaY, int buttons)
{
    if (angleDeltaX == 0.0 && angleDeltaY == 0.0)
        return;
    const QSize frame = frameSize();
    const QSize show = showSize();
    const ControlPosition position{QPoint(toDevicePixel(x * frame.width() / show.width()),
                                          toDevicePixel(y * frame.height() / show.height())),
                                   frame};
    // One notch is 120. Qt counts a tilt to the left as positive, Android a scroll to the right;
    // both count a turn away from the user as positive.
    const float hscroll = float(-angleDeltaX / 120.0);
    const float vscroll = float(angleDeltaY / 120.0);
    ControlMsg msg = ControlMsg::injectScroll(position, hscroll, vscroll, InputMapping::buttons(buttons));
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

void Controller::setWallpaper(const QString &nickname, int width, int height)
{
    if (!m_device || width <= 0 || height <= 0)
        return;
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    // Drawing, saving and pushing the picture all happen off the GUI thread.
    AdbPool::post([serial = m_device->adbConnectionSerial(), desktop, nickname, width, height] {
        QDir().mkpath(desktop);
        const QString path = desktop + "/wallpaper_" + nickname + ".png";
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::yellow, 2, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        QFont font("Arial", 80);
        font.setWeight(QFont::Bold);
        painter.setFont(font);
        QRect area = image.rect();
        area.setTop(150);
        painter.drawText(area, Qt::AlignHCenter | Qt::AlignTop, nickname);
        painter.end();
        if (image.save(path, "PNG"))
            AdbClient::setWallpaper(serial, path);
    });
}

void Controller::resetVideo()
{
    ControlMsg msg = ControlMsg::ofType(ControlMsgType::ResetVideo);
    send(msg);
}
