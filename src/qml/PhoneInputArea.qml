import QtQuick
import Korvel

// Hands the pointer and the keyboard on a phone's picture to the phone's controller.
MouseArea {
    id: area
    property Device device: null
    property bool isDragging: false
    // The clock is kept in 32 bits on purpose: the stored value wraps, so every drag move goes out.
    property int lastMoveTime: 0

    readonly property bool canControl: device !== null && device.running && device.controller !== null

    acceptedButtons: Qt.LeftButton | Qt.RightButton | Qt.MiddleButton
    hoverEnabled: true
    propagateComposedEvents: false
    preventStealing: true
    cursorShape: Qt.ArrowCursor

    onPressed: mouse => {
        keySink.forceActiveFocus()
        isDragging = true
        if (canControl)
            device.controller.handleMouseEvent(InputEvent.MousePress, mouse.x, mouse.y, mouse.button, mouse.buttons)
    }
    onReleased: mouse => {
        isDragging = false
        if (canControl)
            device.controller.handleMouseEvent(InputEvent.MouseRelease, mouse.x, mouse.y, mouse.button, mouse.buttons)
    }
    onPositionChanged: mouse => {
        if (!isDragging)
            return
        const now = Date.now()
        if (now - lastMoveTime > 16) {
            lastMoveTime = now
            if (canControl)
                device.controller.handleMouseEvent(InputEvent.MouseMove, mouse.x, mouse.y, mouse.button, mouse.buttons)
        }
    }
    onCanceled: isDragging = false

    onWheel: wheel => {
        if (canControl)
            device.controller.handleWheelEvent(wheel.x, wheel.y, wheel.angleDelta.x, wheel.angleDelta.y, wheel.buttons)
        wheel.accepted = true
    }

    // Holds the keyboard focus of the view. Keys are taken before the field sees them and go out as
    // key codes; only what an input method commits (Chinese, accented letters) lands in the field,
    // and that is sent as text.
    TextInput {
        id: keySink
        objectName: "keySink"
        width: 1
        height: 1
        opacity: 0
        activeFocusOnTab: true

        onTextChanged: {
            if (text.length === 0)
                return
            if (area.canControl)
                area.device.controller.handleInputMethodText(text)
            text = ""
        }
        // A key held while the view loses focus would never see its release here.
        onActiveFocusChanged: {
            if (!activeFocus && area.canControl)
                area.device.controller.releaseKeyMappings()
        }

        Keys.onPressed: event => {
            if (area.canControl)
                area.device.controller.handleKeyEvent(InputEvent.KeyPress, event.key, event.modifiers, event.text)
            event.accepted = true
        }
        Keys.onReleased: event => {
            if (area.canControl)
                area.device.controller.handleKeyEvent(InputEvent.KeyRelease, event.key, event.modifiers, event.text)
            event.accepted = true
        }
    }
}
