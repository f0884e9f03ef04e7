#include "inputmapping.h"

#include <Qt>

namespace {

// Android KeyEvent codes used here.
enum AndroidKey {
    AKEYCODE_0 = 7,
    AKEYCODE_STAR = 17,
    AKEYCODE_POUND = 18,
    AKEYCODE_DPAD_UP = 19,
    AKEYCODE_DPAD_DOWN = 20,
    AKEYCODE_DPAD_LEFT = 21,
    AKEYCODE_DPAD_RIGHT = 22,
    AKEYCODE_A = 29,
    AKEYCODE_COMMA = 55,
    AKEYCODE_PERIOD = 56,
    AKEYCODE_TAB = 61,
    AKEYCODE_SPACE = 62,
    AKEYCODE_ENTER = 66,
    AKEYCODE_DEL = 67,
    AKEYCODE_GRAVE = 68,
    AKEYCODE_MINUS = 69,
    AKEYCODE_EQUALS = 70,
    AKEYCODE_LEFT_BRACKET = 71,
    AKEYCODE_RIGHT_BRACKET = 72,
    AKEYCODE_BACKSLASH = 73,
    AKEYCODE_SEMICOLON = 74,
    AKEYCODE_APOSTROPHE = 75,
    AKEYCODE_SLASH = 76,
    AKEYCODE_AT = 77,
    AKEYCODE_PLUS = 81,
    AKEYCODE_PAGE_UP = 92,
    AKEYCODE_PAGE_DOWN = 93,
    AKEYCODE_ESCAPE = 111,
    AKEYCODE_FORWARD_DEL = 112,
    AKEYCODE_MOVE_HOME = 122,
    AKEYCODE_MOVE_END = 123,
    AKEYCODE_NUMPAD_ENTER = 160,
    AKEYCODE_NUMPAD_LEFT_PAREN = 162,
    AKEYCODE_NUMPAD_RIGHT_PAREN = 163,
};

enum AndroidMeta : quint32 {
    AMETA_SHIFT_ON = 0x1,
    AMETA_ALT_ON = 0x2,
    AMETA_CTRL_ON = 0x1000,
    AMETA_META_ON = 0x10000,
};

int specialKeyCode(int qtKey)
{
    switch (qtKey) {
    case Qt::Key_Escape: return AKEYCODE_ESCAPE;
    case Qt::Key_Tab: return AKEYCODE_TAB;
    case Qt::Key_Backspace: return AKEYCODE_DEL;
    case Qt::Key_Return: return AKEYCODE_ENTER;
    case Qt::Key_Enter: return AKEYCODE_NUMPAD_ENTER;
    case Qt::Key_Delete: return AKEYCODE_FORWARD_DEL;
    case Qt::Key_Home: return AKEYCODE_MOVE_HOME;
    case Qt::Key_End: return AKEYCODE_MOVE_END;
    case Qt::Key_Left: return AKEYCODE_DPAD_LEFT;
    case Qt::Key_Up: return AKEYCODE_DPAD_UP;
    case Qt::Key_Right: return AKEYCODE_DPAD_RIGHT;
    case Qt::Key_Down: return AKEYCODE_DPAD_DOWN;
    case Qt::Key_PageUp: return AKEYCODE_PAGE_UP;
    case Qt::Key_PageDown: return AKEYCODE_PAGE_DOWN;
    default: return -1;
    }
}

// Shifted symbols share their base key's code, except "@" and "2", which stay apart.
int printableKeyCode(int qtKey)
{
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)
        return AKEYCODE_A + (qtKey - Qt::Key_A);
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9)
        return AKEYCODE_0 + (qtKey - Qt::Key_0);
    switch (qtKey) {
    case Qt::Key_Space: return AKEYCODE_SPACE;
    case Qt::Key_Exclam: return AKEYCODE_0 + 1;
    case Qt::Key_Dollar: return AKEYCODE_0 + 4;
    case Qt::Key_Percent: return AKEYCODE_0 + 5;
    case Qt::Key_AsciiCircum: return AKEYCODE_0 + 6;
    case Qt::Key_Ampersand: return AKEYCODE_0 + 7;
    case Qt::Key_Asterisk: return AKEYCODE_STAR;
    case Qt::Key_NumberSign: return AKEYCODE_POUND;
    case Qt::Key_Comma:
    case Qt::Key_Less: return AKEYCODE_COMMA;
    case Qt::Key_Period:
    case Qt::Key_Greater: return AKEYCODE_PERIOD;
    case Qt::Key_Minus:
    case Qt::Key_Underscore: return AKEYCODE_MINUS;
    case Qt::Key_Equal: return AKEYCODE_EQUALS;
    case Qt::Key_BracketLeft:
    case Qt::Key_BraceLeft: return AKEYCODE_LEFT_BRACKET;
    case Qt::Key_BracketRight:
    case Qt::Key_BraceRight: return AKEYCODE_RIGHT_BRACKET;
    case Qt::Key_Backslash:
    case Qt::Key_Bar: return AKEYCODE_BACKSLASH;
    case Qt::Key_Colon:
    case Qt::Key_Semicolon: return AKEYCODE_SEMICOLON;
    case Qt::Key_QuoteDbl:
    case Qt::Key_Apostrophe: return AKEYCODE_APOSTROPHE;
    case Qt::Key_Slash:
    case Qt::Key_Question: return AKEYCODE_SLASH;
    case Qt::Key_At: return AKEYCODE_AT;
    case Qt::Key_Plus: return AKEYCODE_PLUS;
    case Qt::Key_ParenLeft: return AKEYCODE_NUMPAD_LEFT_PAREN;
    case Qt::Key_ParenRight: return AKEYCODE_NUMPAD_RIGHT_PAREN;
    case Qt::Key_QuoteLeft:
    case Qt::Key_AsciiTilde: return AKEYCODE_GRAVE;
    default: return -1;
    }
}

} // namespace

int InputMapping::touchAction(InputEvent::Type eventType)
{
    switch (eventType) {
    case InputEvent::MousePress: return 0;
    case InputEvent::MouseRelease: return 1;
    case InputEvent::MouseMove: return 2;
    default: return -1;
    }
}

int InputMapping::keyAction(InputEvent::Type eventType)
{
    switch (eventType) {
    case InputEvent::KeyPress: return 0;
    case InputEvent::KeyRelease: return 1;
    default: return -1;
    }
}

quint32 InputMapping::actionButton(int qtButton)
{
    switch (qtButton) {
    case Qt::LeftButton:
    case Qt::RightButton:
    case Qt::MiddleButton:
    case Qt::BackButton:
    case Qt::ForwardButton:
        return quint32(qtButton);
    default:
        return 0;
    }
}

quint32 InputMapping::buttons(int qtButtons)
{
    return quint32(qtButtons) & 0x1F;
}

int InputMapping::androidKeyCode(int qtKey, int modifiers)
{
    const int special = specialKeyCode(qtKey);
    if (special >= 0)
        return special;
    if (qtKey < 32 || qtKey > 126 || (modifiers & (Qt::AltModifier | Qt::MetaModifier)))
        return -1;
    return printableKeyCode(qtKey);
}

quint32 InputMapping::metaState(int modifiers)
{
    quint32 meta = 0;
    if (modifiers & Qt::ShiftModifier)
        meta |= AMETA_SHIFT_ON;
    if (modifiers & Qt::ControlModifier)
        meta |= AMETA_CTRL_ON;
    if (modifiers & Qt::AltModifier)
        meta |= AMETA_ALT_ON;
    if (modifiers & Qt::MetaModifier)
        meta |= AMETA_META_ON;
    return meta;
}

bool InputMapping::isNonAsciiText(const QString &text)
{
    bool nonAscii = false;
    for (const QChar c : text) {
        if (!c.isPrint())
            return false;
        nonAscii = nonAscii || c.unicode() > 126;
    }
    return nonAscii;
}
