#pragma once

#include <QString>
#include <QtGlobal>

// How Qt's pointer and key events on a phone view become Android input: event types to actions,
// mouse buttons to motion buttons, Qt keys to Android key codes, modifiers to meta state.
class InputMapping
{
public:
    InputMapping() = delete;

    // Qt event types as the views pass them.
    enum EventType { MousePress = 2, MouseRelease = 3, MouseMove = 5, KeyPress = 6, KeyRelease = 7 };

    // Android motion action for a mouse event type, or -1 when nothing is sent.
    static int touchAction(int eventType);
    // Android key action for a key event type, or -1 when nothing is sent.
    static int keyAction(int eventType);
    // The single button that changed; anything that is not exactly one of the five gives 0.
    static quint32 actionButton(int qtButton);
    static quint32 buttons(int qtButtons);
    // Android key code for a Qt key under the given Qt modifiers, or -1 when the key sends nothing.
    static int androidKeyCode(int qtKey, int modifiers);
    static quint32 metaState(int modifiers);
    // True for printable text with at least one character outside ASCII.
    static bool isNonAsciiText(const QString &text);
};
