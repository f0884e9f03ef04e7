import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Gives one phone a nickname.
Dialog {
    id: dialog
    property Device device: null
    readonly property string serial: device ? device.adbConnectionSerial : ""
    readonly property string currentName: device ? device.nickName : ""

    title: qsTr("Rename Device")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 440
    padding: 14

    function confirm() {
        if (!device)
            return
        const name = nameField.text.trim()
        DeviceSettings.setDeviceNickname(serial, name)
        device.setNickName(name)
        dialog.close()
    }

    onAboutToShow: {
        nameField.text = currentName
        nameField.forceActiveFocus()
        nameField.selectAll()
    }

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

    contentItem: GridLayout {
        columns: 2
        columnSpacing: 10
        rowSpacing: 10

        Text { text: qsTr("Serial Number:"); color: ColorManager.textGray; font.pixelSize: Theme.fontNormal }
        Text {
            Layout.fillWidth: true
            text: dialog.serial
            color: ColorManager.textWhite
            font.pixelSize: Theme.fontNormal
            elide: Text.ElideRight
        }
        Text { text: qsTr("Current Name:"); color: ColorManager.textGray; font.pixelSize: Theme.fontNormal }
        Text {
            Layout.fillWidth: true
            text: dialog.currentName.length > 0 ? dialog.currentName : qsTr("No Custom Name")
            color: dialog.currentName.length > 0 ? ColorManager.textWhite : ColorManager.textGray
            font.pixelSize: Theme.fontNormal
            elide: Text.ElideRight
        }
        Text { text: qsTr("New Name:"); color: ColorManager.textGray; font.pixelSize: Theme.fontNormal }
        KVTextField {
            id: nameField
            objectName: "renameField"
            Accessible.name: qsTr("New Name:")
            Layout.fillWidth: true
            placeholderText: qsTr("Enter new device name")
            onAccepted: dialog.confirm()
        }
        RowLayout {
            Layout.columnSpan: 2
            Layout.alignment: Qt.AlignRight
            KVButton {
                text: qsTr("Cancel")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
            KVButton {
                objectName: "renameConfirm"
                text: qsTr("Confirm")
                onClicked: dialog.confirm()
            }
        }
    }
}
