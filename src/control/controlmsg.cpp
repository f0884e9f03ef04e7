#include "controlmsg.h"

ControlMsg ControlMsg::injectKeycode(quint32 action, qint32 keycode, quint32 repeat, quint32 metastate)
{
    ControlMsg msg;
    msg.type = ControlMsgType::InjectKeycode;
    msg.keycode = Keycode{action, keycode, repeat, metastate};
    return msg;
}

ControlMsg ControlMsg::injectText(const QString &text)
{
    ControlMsg msg;
    msg.type = ControlMsgType::InjectText;
    // Cut on UTF-16 units first: the UTF-8 form may then be longer than the limit.
    msg.text = text.left(MaxInjectTextLength).toUtf8();
    return msg;
}

ControlMsg ControlMsg::injectTouch(quint64 pointerId, quint32 action, quint32 actionButton, quint32 buttons,
                                   const ControlPosition &position, float pressure)
{
    ControlMsg msg;
    msg.type = ControlMsgType::InjectTouchEvent;
    msg.touch = Touch{pointerId, action, actionButton, buttons, position, pressure};
    return msg;
}

ControlMsg ControlMsg::injectScroll(const ControlPosition &position, float hscroll, float vscroll, quint32 buttons)
{
    ControlMsg msg;
    msg.type = ControlMsgType::InjectScrollEvent;
    msg.scroll = Scroll{position, hscroll, vscroll, buttons};
    return msg;
}

ControlMsg ControlMsg::backOrScreenOn(quint8 action)
{
    ControlMsg msg;
    msg.type = ControlMsgType::BackOrScreenOn;
    msg.backOrScreenOnAction = action;
    return msg;
}

ControlMsg ControlMsg::getClipboard(quint32 copyKey)
{
    ControlMsg msg;
    msg.type = ControlMsgType::GetClipboard;
    msg.copyKey = copyKey;
    return msg;
}

ControlMsg ControlMsg::setClipboard(quint64 sequence, const QString &text, bool paste)
{
    ControlMsg msg;
    msg.type = ControlMsgType::SetClipboard;
    // No text: nothing else is set either, so paste stays false.
    if (text.isEmpty())
        return msg;
    msg.text = text.left(MaxClipboardTextLength).toUtf8();
    msg.clipboard = Clipboard{sequence, paste};
    return msg;
}

ControlMsg ControlMsg::setDisplayPower(bool on)
{
    ControlMsg msg;
    msg.type = ControlMsgType::SetDisplayPower;
    msg.displayPowerOn = on;
    return msg;
}

ControlMsg ControlMsg::ofType(ControlMsgType type)
{
    ControlMsg msg;
    msg.type = type;
    return msg;
}
