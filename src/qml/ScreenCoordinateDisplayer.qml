import QtQuick
import Korvel

// Shows where the pointer lies on the phone's screen, as fractions of its width and height.
Item {
    id: root
    property real fractionX: 0
    property real fractionY: 0
    readonly property string coordinateText: qsTr("X: ") + fractionX.toFixed(2) + qsTr("  Y: ") + fractionY.toFixed(2)

    MouseArea {
        id: tracker
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.CrossCursor
        acceptedButtons: Qt.NoButton
        onPositionChanged: mouse => {
            root.fractionX = Math.min(1, Math.max(0, mouse.x / Math.max(1, root.width)))
            root.fractionY = Math.min(1, Math.max(0, mouse.y / Math.max(1, root.height)))
        }
    }

    Rectangle {
        visible: tracker.containsMouse
        x: tracker.mouseX
        width: 1
        height: parent.height
        color: ColorManager.primaryGreen
        opacity: 0.7
    }
    Rectangle {
        visible: tracker.containsMouse
        y: tracker.mouseY
        width: parent.width
        height: 1
        color: ColorManager.primaryGreen
        opacity: 0.7
    }

    Rectangle {
        anchors.top: parent.top
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.topMargin: 4
        width: label.implicitWidth + 12
        height: label.implicitHeight + 6
        radius: Theme.radius
        color: "#CC000000"
        border.color: ColorManager.borderDarkGreen
        Text {
            id: label
            anchors.centerIn: parent
            text: root.coordinateText
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontSmall
            font.family: "monospace"
        }
    }
}
