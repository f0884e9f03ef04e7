import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Raw adb commands on one phone or on every phone of a group. adb runs synchronously.
Dialog {
    id: dialog
    property Device device: null
    property DeviceGroup deviceGroup: null

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
        if (device)
            outputArea.text = device.executeADBCommand(input)
        if (deviceGroup)
            outputArea.text = deviceGroup.executeADBCommand(input)
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

        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            TextArea {
                id: outputArea
                objectName: "adbCommandOutput"
                readOnly: true
                selectByMouse: true
                placeholderText: qsTr("Command output will be displayed here...")
                placeholderTextColor: ColorManager.textGray
                color: ColorManager.textWhite
                font.family: "monospace"
                font.pixelSize: Theme.fontSmall
                wrapMode: TextArea.WrapAnywhere
                background: Rectangle {
                    color: ColorManager.backgroundPureBlack
                    radius: Theme.radius
                    border.color: ColorManager.borderDarkGray
                }
            }
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
                    outputArea.text = ""
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
