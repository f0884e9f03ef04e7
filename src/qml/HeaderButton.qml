import QtQuick
import QtQuick.Controls
import Korvel

// A small glyph button of a phone's header row.
AbstractButton {
    id: control
    property color textColor: ColorManager.textWhite
    property string toolTipText
    // Drawn instead of the text where fonts lack the glyph.
    property string iconName

    implicitWidth: 18
    implicitHeight: 18
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    font.pixelSize: 12
    // Screen readers say what the button does, not the glyph it shows.
    Accessible.name: toolTipText.length > 0 ? toolTipText : text

    background: Rectangle {
        radius: 3
        color: control.down ? ColorManager.backgroundBlackGreen
                            : control.hovered ? ColorManager.borderDarkGray : "transparent"
    }
    contentItem: Item {
        Text {
            anchors.fill: parent
            visible: control.iconName.length === 0
            text: control.text
            font: control.font
            color: control.textColor
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
        Icon {
            anchors.centerIn: parent
            visible: control.iconName.length > 0
            width: Math.min(parent.width, parent.height) - 4
            height: width
            name: control.iconName
            color: control.textColor
        }
    }
    KVToolTip {
        text: control.toolTipText
        visible: control.hovered && control.toolTipText.length > 0
    }
}
