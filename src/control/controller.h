#pragma once

#include "controlmsg.h"
#include "inputmapping.h"

#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>

class KeyMapPlayer;
class KeyMappingProfile;
class QIODevice;

// Turns user input on one phone into control messages, writes them on the session's control
// socket at once, and announces each message written so that group control can replay it.
// Positions arrive in the view's coordinates (the show size) and leave in the picture's (the frame
// size); the session keeps both sizes current.
class Controller : public QObject
{
    Q_OBJECT

public:
    // The socket belongs to the session.
    explicit Controller(QObject *parent = nullptr, QIODevice *socket = nullptr);
    ~Controller() override;

    void setShowSize(QSize size) { m_showSize = size; }
    void setFrameSize(QSize size) { m_frameSize = size; }
    QSize showSize() const { return m_showSize; }
    QSize frameSize() const { return m_frameSize; }
    // Not owned; null turns key mapping off.
    void setKeyMappingProfile(const KeyMappingProfile *profile);

    int clickDelayMilliSeconds() const { return m_clickDelayMilliSeconds; }

    // The tick of synthesised swipes. Tests may shorten it.
    static void setSwipeInterval(int milliseconds);

signals:
    void messageSent(const ControlMsg &msg);

public slots:
    void actionHome();
    void actionShowTaskList();
    void actionBack();
    void actionSwipeUp();
    void actionSwipeDown();
    void actionSwipeLeft();
    void actionSwipeRight();
    void actionSleep();
    void actionWakeUp();
    void actionVolumeUp();
    void actionVolumeDown();
    void actionCopy();
    void actionPaste();
    void actionCut();
    void actionRotateScreen();
    void actionInputText(const QString &text);
    void handleMouseEvent(InputEvent::Type eventType, double x, double y, int button, int buttons);
    void processMouseEvent(qint64 pointerId, InputEvent::Type eventType, double x, double y, int button, int buttons);
    void handleKeyEvent(InputEvent::Type eventType, int key, int modifiers, const QString &text);
    // Lifts every finger that a held mapped key keeps down; the view calls it when it loses focus,
    // because the key's release will then go elsewhere.
    void releaseKeyMappings();
    // A wheel turn at a view point; angle deltas in Qt's eighths of a degree (120 per notch).
    void handleWheelEvent(double x, double y, double angleDeltaX, double angleDeltaY, int buttons);
    // Text that an input method committed; key codes cannot carry it, so it is pasted.
    void handleInputMethodText(const QString &text);
    void send(const ControlMsg &msg);
    // A message replayed from the group's host, after this phone's own delay.
    void groupSend(const ControlMsg &msg);
    void setClickDelayMilliSeconds(int milliSeconds);
    void resetVideo();

private:
    void sendKeyPress(qint32 keycode);
    void swipe(const QPointF &end, int steps);
    ControlPosition position(double x, double y) const;

    QPointer<QIODevice> m_socket;
    QSize m_showSize{-1, -1};
    QSize m_frameSize{-1, -1};
    int m_clickDelayMilliSeconds = 0;
    KeyMapPlayer *m_keyMap;
};
