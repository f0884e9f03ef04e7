import QtQuick
import QtQuick.Controls
import Korvel

// A compact check box in the application's colours.
CheckBox {
    id: control
    font.pixelSize: Theme.fontNormal
    spacing: 6
    Accessible.name: text

    indicator: Rectangle {
        implicitWidth: 16
        implicitHeight: 16
        x: control.leftPadding
        y: (control.height - height) / 2
        radius: 3
        color: control.checked ? ColorManager.primaryDarkGreen : ColorManager.backgroundBlack
        border.color: control.checked ? ColorManager.primaryGreen : ColorManager.borderDarkGray
        Text {
            anchors.centerIn: parent
            text: "✓"
            visible: control.checked
            color: ColorManager.textBlack
            font.pixelSize: 12
            font.bold: true
        }
    }
    contentItem: Text {
        leftPadding: control.indicator.width + control.spacing
        text: control.text
        font: control.font
        color: ColorManager.textWhite
        verticalAlignment: Text.AlignVCenter
    }
}
