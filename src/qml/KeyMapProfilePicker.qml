import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Chooses which key-mapping profile one phone plays, or none.
Dialog {
    id: dialog
    property Device device: null
    readonly property string currentName: device && device.currentKeyMappingProfile
                                          ? device.currentKeyMappingProfile.name : ""

    function choose(name) {
        if (device)
            device.setCurrentKeyMappingProfile(name.length > 0 ? KeyMapping.getProfile(name) : null)
        dialog.close()
    }

    title: qsTr("Select KeyMapping Profile")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 340
    padding: 14

    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }
    header: Label {
        text: dialog.title
        padding: 14
        color: ColorManager.textGreen
        font.pixelSize: Theme.fontTitle
        font.bold: true
    }

    contentItem: ColumnLayout {
        spacing: 6

        ItemDelegate {
            objectName: "noKeyMap"
            Layout.fillWidth: true
            text: qsTr("No KeyMap")
            Accessible.name: text
            highlighted: dialog.currentName.length === 0
            onClicked: dialog.choose("")
        }
        Repeater {
            model: KeyMapping.profileNames
            delegate: ItemDelegate {
                required property string modelData
                objectName: "profile_" + modelData
                Layout.fillWidth: true
                text: modelData
                Accessible.name: modelData
                highlighted: modelData === dialog.currentName
                onClicked: dialog.choose(modelData)
            }
        }
        KVButton {
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            textColor: ColorManager.textWhite
            onClicked: dialog.close()
        }
    }
}
