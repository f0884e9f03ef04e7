#pragma once

#include <QByteArray>
#include <QPoint>
#include <QSize>
#include <QString>
#include <QtGlobal>

// The wire's type byte of a control message.
enum class ControlMsgType : quint32 {
    InjectKeycode = 0,
    InjectText = 1,
    InjectTouchEvent = 2,
    InjectScrollEvent = 3,
    BackOrScreenOn = 4,
    GetClipboard = 8,
    SetClipboard = 9,
    SetDisplayPower = 10,
    RotateDevice = 11,
    ResetVideo = 17,
};

// A point in device pixels and the size of the device screen it refers to.
struct ControlPosition
{
    QPoint point;
    QSize screenSize;
};

// One host-to-phone control message: a type and the payload fields that type uses; the others
// stay zero. Copies are cheap and share the text bytes, which go away with the last copy, so a
// message can be held by delayed sends for as long as they need it.
struct ControlMsg
{
    // Android's key and motion actions used here.
    enum KeyAction : quint32 { KeyDown = 0, KeyUp = 1 };
    enum TouchAction : quint32 { TouchDown = 0, TouchUp = 1, TouchMove = 2 };

    // The longest texts accepted, in UTF-16 code units, counted before conversion to UTF-8.
    static constexpr int MaxInjectTextLength = 300;
    static constexpr int MaxClipboardTextLength = 0x3FFF2;

    struct Keycode
    {
        quint32 action = 0;
        qint32 keycode = 0;
        quint32 repeat = 0;
        quint32 metastate = 0;
    };
    struct Touch
    {
        quint64 pointerId = 0;
        quint32 action = 0;
        quint32 actionButton = 0;
        quint32 buttons = 0;
        ControlPosition position;
        float pressure = 0.0f;
    };
    struct Scroll
    {
        ControlPosition position;
        float hscroll = 0.0f;
        float vscroll = 0.0f;
        quint32 buttons = 0;
    };
    struct Clipboard
    {
        quint64 sequence = 0;
        bool paste = false;
    };

    static ControlMsg injectKeycode(quint32 action, qint32 keycode, quint32 repeat, quint32 metastate);
    static ControlMsg injectText(const QString &text);
    static ControlMsg injectTouch(quint64 pointerId, quint32 action, quint32 actionButton, quint32 buttons,
                                  const ControlPosition &position, float pressure);
    static ControlMsg injectScroll(const ControlPosition &position, float hscroll, float vscroll, quint32 buttons);
    static ControlMsg backOrScreenOn(quint8 action);
    static ControlMsg getClipboard(quint32 copyKey);
    static ControlMsg setClipboard(quint64 sequence, const QString &text, bool paste);
    static ControlMsg setDisplayPower(bool on);
    // A message without payload (RotateDevice, ResetVideo).
    static ControlMsg ofType(ControlMsgType type);

    ControlMsgType type = ControlMsgType::InjectKeycode;
    Keycode keycode;
    Touch touch;
    Scroll scroll;
    quint8 backOrScreenOnAction = 0;
    quint32 copyKey = 0;
    Clipboard clipboard;
    bool displayPowerOn = false;
    // UTF-8 text of InjectText and SetClipboard; null when SetClipboard carries none.
    QByteArray text;
};
