import QtQuick
import QtQuick.Controls
import Korvel

// A text field in the application's colours. Named by its placeholder unless a label names it.
TextField {
    Accessible.name: placeholderText
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
