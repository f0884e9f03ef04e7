#pragma once

#include <QObject>
#include <QString>
#include <QtGlobal>

// The pointer and key events a phone view hands on; the values are Qt's own event types.
namespace InputEvent {
Q_NAMESPACE
enum Type { MousePress = 2, MouseRelease = 3, MouseMove = 5, KeyPress = 6, KeyRelease = 7 };
Q_ENUM_NS(Type)
}

// How Qt's pointer and key events on a phone view become Android input: event types to actions,
// mouse buttons to motion buttons, Qt keys to Android key codes, modifiers to meta state.
class InputMapping
{
public:
    InputMapping() = delete;

    // Android motion action for a mouse event type, or -1 when nothing is sent.
    static int touchAction(InputEvent::Type eventType);
    // Android key action for a key event type, or -1 when nothing is sent.
    static int keyAction(InputEvent::Type eventType);
    // The single button that changed; anything that is not exactly one of the five gives 0.
    static quint32 actionButton(int qtButton);
    static quint32 buttons(int qtButtons);
    // Android key code for a Qt key under the given Qt modifiers, or -1 when the key sends nothing.
    static int androidKeyCode(int qtKey, int modifiers);
    static quint32 metaState(int modifiers);
    // True for printable text with at least one character outside ASCII.
    static bool isNonAsciiText(const QString &text);
};
