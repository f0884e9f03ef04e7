import QtQuick
import QtQuick.Controls
import Korvel

ToolTip {
    id: tip
    delay: 400
    contentItem: Text {
        text: tip.text
        color: ColorManager.textWhite
        font.pixelSize: Theme.fontSmall
    }
    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }
}
