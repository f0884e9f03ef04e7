import QtQuick
import QtQuick.Controls
import Korvel

// Left panel: the groups and their phones.
Rectangle {
    id: root
    color: ColorManager.backgroundDarkGray

    Column {
        anchors.fill: parent
        anchors.margins: 10
        spacing: 8

        Text {
            text: qsTr("Device Groups")
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontTitle
            font.bold: true
        }

        Text {
            width: parent.width
            text: qsTr("No device groups")
            color: ColorManager.textGray
            font.pixelSize: Theme.fontNormal
            wrapMode: Text.WordWrap
        }
    }
}
