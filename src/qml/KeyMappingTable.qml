import QtQuick
import QtQuick.Layouts
import Korvel

// The entries of a key-mapping profile, each with its edit and delete buttons.
Rectangle {
    id: table
    // Null shows an empty table.
    property KeyMappingProfile profile: null
    signal editRequested(int index)

    component Caption: Text {
        color: ColorManager.textGray
        font.pixelSize: Theme.fontNormal
    }

    color: ColorManager.backgroundBlack
    radius: Theme.radius
    border.color: ColorManager.borderDarkGray

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 6
        spacing: 4
        RowLayout {
            Caption { Layout.preferredWidth: 110; text: qsTr("Key") }
            Caption { Layout.preferredWidth: 70; text: qsTr("Type") }
            Caption { Layout.preferredWidth: 60; text: qsTr("Count") }
            Caption { Layout.preferredWidth: 100; text: qsTr("Duration(ms)") }
            Caption { Layout.fillWidth: true; text: qsTr("Actions") }
        }
        ListView {
            objectName: "mappingTable"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 2
            model: table.profile ? table.profile.mappings : []
            delegate: RowLayout {
                required property var modelData
                required property int index
                width: ListView.view.width
                Text {
                    Layout.preferredWidth: 110
                    text: modelData.keyDisplay
                    color: ColorManager.textWhite
                    font.pixelSize: Theme.fontNormal
                }
                Text {
                    Layout.preferredWidth: 70
                    text: modelData.type === KeyMappingType.Tap ? qsTr("Touch") : qsTr("Swipe")
                    color: ColorManager.textWhite
                    font.pixelSize: Theme.fontNormal
                }
                Text {
                    Layout.preferredWidth: 60
                    text: modelData.type === KeyMappingType.Tap ? modelData.data.count : "-"
                    color: ColorManager.textWhite
                    font.pixelSize: Theme.fontNormal
                }
                Text {
                    Layout.preferredWidth: 100
                    text: modelData.type === KeyMappingType.Swipe ? modelData.data.duration : "-"
                    color: ColorManager.textWhite
                    font.pixelSize: Theme.fontNormal
                }
                KVButton {
                    implicitHeight: 24
                    text: qsTr("Edit")
                    onClicked: table.editRequested(index)
                }
                KVButton {
                    implicitHeight: 24
                    text: qsTr("Delete")
                    textColor: ColorManager.textRed
                    onClicked: table.profile.removeMapping(index)
                }
                Item { Layout.fillWidth: true }
            }
        }
    }
}
