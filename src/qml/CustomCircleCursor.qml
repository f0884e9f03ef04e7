import QtQuick
import Korvel

// A ring with a dot, centred on a point given as fractions of the parent's size: marks where a
// key mapping touches the phone.
Item {
    id: root
    property real fractionX: 0.5
    property real fractionY: 0.5
    property color color: ColorManager.primaryGreen
    property string label
    property real radius: 12

    x: fractionX * (parent ? parent.width : 0) - radius
    y: fractionY * (parent ? parent.height : 0) - radius
    width: radius * 2
    height: radius * 2

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        color: "transparent"
        border.color: root.color
        border.width: 2
    }
    Rectangle {
        anchors.centerIn: parent
        width: 4
        height: 4
        radius: 2
        color: root.color
    }
    Text {
        anchors.left: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: 2
        visible: root.label.length > 0
        text: root.label
        color: root.color
        font.pixelSize: Theme.fontSmall
        font.bold: true
        style: Text.Outline
        styleColor: ColorManager.backgroundPureBlack
    }
}
