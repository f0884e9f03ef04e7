import QtQuick
import QtQuick.Controls
import Korvel

TextField {
    color: ColorManager.textWhite
    placeholderTextColor: ColorManager.textGray
    selectedTextColor: ColorManager.textBlack
    selectionColor: ColorManager.primaryGreen
    font.pixelSize: Theme.fontNormal
    implicitHeight: 30
    background: Rectangle {
        color: ColorManager.backgroundBlack
        radius: Theme.radius
        border.color: parent.activeFocus ? ColorManager.borderDarkGreen : ColorManager.borderDarkGray
    }
}
