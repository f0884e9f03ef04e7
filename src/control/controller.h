#pragma once

#include "adbtask.h"
#include "controlmsg.h"

#include <QObject>
#include <QPointer>
#include <QList>
#include <QPointF>
#include <QSet>
#include <QSize>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <functional>

class Device;
class QIODevice;

// Turns user actions on one phone into control messages, writes them on the session's control
// socket, and announces each message written so that group control can replay it.
class Controller : public QObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    // The parent is normally the session's Device; the socket belongs to the session.
    explicit Controller(QObject *parent = nullptr, QIODevice *socket = nullptr);
    ~Controller() override;

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
    void actionReboot();
    void actionShutdown();
    void actionSleep();
    void actionWakeUp();
    void actionVolumeUp();
    void actionVolumeDown();
    void actionCopy();
    void actionPaste();
    void actionCut();
    void actionRotateScreen();
    void installApk(const QString &apkPath);
    void uploadFile(const QString &filePath);
    void actionInputText(const QString &text);
    void handleMouseEvent(int eventType, double x, double y, int button, int buttons);
    void processMouseEvent(qint64 pointerId, int eventType, double x, double y, int button, int buttons);
    void handleKeyEvent(int eventType, int key, int modifiers, const QString &text);
    bool handleKeyMapping(int eventType, int key, int modifiers);
    // Lifts every finger that a held mapped key keeps down; the view calls it when it loses focus,
    // because the key's release will then go elsewhere.
    void releaseKeyMappings();
    // A wheel turn at a view point; angle deltas in Qt's eighths of a degree (120 per notch).
    void handleWheelEvent(double x, double y, double angleDeltaX, double angleDeltaY, int buttons);
    // Text that an input method committed; key codes cannot carry it, so it is pasted.
    void handleInputMethodText(const QString &text);
    void send(const ControlMsg &msg);
    void groupSend(const ControlMsg &msg);
    void setClickDelayMilliSeconds(int milliSeconds);
    void setWallpaper(const QString &nickname, int width, int height);
    void resetVideo();

private:
    // A mapped key whose finger is down until the key goes up.
    struct HeldMapping
    {
        int keyCode = 0;
        int modifiers = 0;
        qint64 pointerId = 0;
        // Where the finger is lifted, as a fraction of the view.
        QPointF releaseAt;
    };

    void sendKeyPress(qint32 keycode);
    qint64 takeMappingPointerId();
    void mappedTouch(qint64 pointerId, int eventType, const QPointF &fraction);
    int heldMappingIndex(int keyCode, int modifiers) const;
    void swipe(const QPointF &end, int steps);
    QSize showSize() const;
    QSize frameSize() const;
    void runInBackground(const QList<AdbTask::Step> &steps, const QString &successText,
                         const QString &failureText, int failureTimeout);
    void report(const QString &message, const QString &type, int timeout);

    QPointer<QIODevice> m_socket;
    int m_clickDelayMilliSeconds = 0;
    QPointer<Device> m_device;
    QList<HeldMapping> m_heldMappings;
    // Fingers of repeated taps still playing: as busy as a held key's.
    QSet<qint64> m_tappingPointerIds;
    int m_nextMappingPointerId = 0;
    // Installs and uploads under way, by task id.
    QSet<quint64> m_tasks;
};
