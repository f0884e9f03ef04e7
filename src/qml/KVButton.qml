import QtQuick
import QtQuick.Controls
import Korvel

// The application's flat button: green text on dark, highlighted while hovered.
Button {
    id: control
    property color textColor: ColorManager.textGreen
    property color backgroundColor: ColorManager.backgroundDarkGray
    property string toolTipText: ""

    implicitHeight: 30
    leftPadding: 12
    rightPadding: 12
    font.pixelSize: Theme.fontNormal
    hoverEnabled: true
    // Named even when accessibility is switched on after the button was made.
    Accessible.name: text.length > 0 ? text : toolTipText

    contentItem: Text {
        text: control.text
        font: control.font
        color: control.enabled ? control.textColor : ColorManager.textGray
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.down ? ColorManager.backgroundBlackGreen
                            : control.hovered && control.enabled ? Qt.lighter(control.backgroundColor, 1.6)
                                                                 : control.backgroundColor
        border.color: control.enabled ? ColorManager.borderDarkGreen : ColorManager.borderDarkGray
        border.width: 1
    }

    KVToolTip {
        text: control.toolTipText
        visible: control.hovered && control.toolTipText.length > 0
    }
}
