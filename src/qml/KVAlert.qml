import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// A small modal message box.
Dialog {
    id: alert
    property string message
    title: qsTr("Alert")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 380
    standardButtons: Dialog.Ok

    function show(newTitle, newMessage) {
        alert.title = newTitle
        alert.message = newMessage
        alert.open()
    }

    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }

    Text {
        width: parent.width
        text: alert.message
        color: ColorManager.textWhite
        font.pixelSize: Theme.fontNormal
        wrapMode: Text.WordWrap
    }
}
