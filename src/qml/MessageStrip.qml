import QtQuick
import Korvel

// A status message over a phone's picture, coloured by its kind, with a close button.
Rectangle {
    id: strip
    property string text
    property int kind: MessageKind.Info
    signal dismissed()

    height: Math.max(22, label.implicitHeight + 8)
    color: Theme.messageColor(kind)
    opacity: 0.92

    Text {
        id: label
        anchors.left: parent.left
        anchors.right: close.left
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 6
        text: strip.text
        color: ColorManager.textWhite
        font.pixelSize: Theme.fontSmall
        wrapMode: Text.Wrap
        maximumLineCount: 3
        elide: Text.ElideRight
    }
    HeaderButton {
        id: close
        objectName: "messageClose"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.rightMargin: 2
        text: "×"
        toolTipText: qsTr("Close")
        onClicked: strip.dismissed()
    }
}
