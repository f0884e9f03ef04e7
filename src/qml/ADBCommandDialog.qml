import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Raw adb commands on one phone or on every phone of a group, all phones at once; each phone's
// answer streams into its own row.
Dialog {
    id: dialog
    property Device device: null
    property DeviceGroup deviceGroup: null
    // The run on display: the group's, or the phone's own.
    property GroupOperation operation: null

    title: qsTr("ADB Command")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 620
    height: 520
    padding: 14

    function execute() {
        const input = inputArea.text
        if (input.trim().length === 0)
            return
        if (deviceGroup)
            operation = deviceGroup.actions.executeADBCommand(input)
        else if (device)
            operation = device.actions.executeADBCommand(input)
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

    contentItem: ColumnLayout {
        spacing: 8

        ScrollView {
            Layout.fillWidth: true
            Layout.preferredHeight: 120
            TextArea {
                id: inputArea
                objectName: "adbCommandInput"
                Accessible.name: qsTr("ADB Command")
                placeholderText: qsTr("Enter ADB command, for example:\nshell ls\nshell ps")
                placeholderTextColor: ColorManager.textGray
                color: ColorManager.textWhite
                font.family: "monospace"
                font.pixelSize: Theme.fontNormal
                wrapMode: TextArea.Wrap
                background: Rectangle {
                    color: ColorManager.backgroundBlack
                    radius: Theme.radius
                    border.color: inputArea.activeFocus ? ColorManager.borderDarkGreen : ColorManager.borderDarkGray
                }
            }
        }

        Text {
            text: qsTr("Command Output")
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontNormal
            font.bold: true
        }

        Text {
            text: qsTr("Command output will be displayed here...")
            visible: dialog.operation === null
            color: ColorManager.textGray
            font.pixelSize: Theme.fontSmall
        }

        GroupOperationView {
            objectName: "adbCommandOutput"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: dialog.operation !== null
            operation: dialog.operation
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: 8
            KVButton {
                objectName: "adbCommandExecute"
                text: qsTr("Execute")
                onClicked: dialog.execute()
            }
            KVButton {
                text: qsTr("Clear")
                textColor: ColorManager.textWhite
                onClicked: {
                    if (dialog.operation && dialog.operation.running)
                        dialog.operation.cancel()
                    dialog.operation = null
                    inputArea.text = ""
                }
            }
            KVButton {
                text: qsTr("Close")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
        }
    }
}
