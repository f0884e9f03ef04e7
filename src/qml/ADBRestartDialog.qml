import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Restarts the adb server after a warning, and says how it went.
Dialog {
    id: dialog
    property DeviceGroupManager groupManager: null
    // Empty until a restart was tried.
    property string resultText
    property bool succeeded: false
    property bool restarting: false

    title: qsTr("Restart ADB Server")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 420
    padding: 14

    function restart() {
        restarting = true
        groupManager.restartADBServer()
    }

    Connections {
        target: dialog.groupManager
        function onAdbServerRestarted(restarted) {
            dialog.restarting = false
            dialog.succeeded = restarted
            dialog.resultText = restarted ? qsTr("ADB server restarted successfully") : qsTr("Failed to restart ADB server")
        }
    }

    onAboutToShow: resultText = ""

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
        spacing: 14
        Text {
            Layout.fillWidth: true
            visible: dialog.resultText.length === 0
            text: qsTr("Restarting ADB will disconnect all connected devices.")
            color: ColorManager.textYellow
            font.pixelSize: Theme.fontNormal
            wrapMode: Text.Wrap
        }
        Text {
            objectName: "adbRestartResult"
            Layout.fillWidth: true
            visible: dialog.resultText.length > 0
            text: dialog.resultText
            color: dialog.succeeded ? ColorManager.textGreen : ColorManager.textRed
            font.pixelSize: Theme.fontNormal
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            KVButton {
                visible: dialog.resultText.length === 0
                text: qsTr("Cancel")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
            KVButton {
                objectName: "adbRestartConfirm"
                visible: dialog.resultText.length === 0
                enabled: !dialog.restarting
                text: qsTr("Restart")
                textColor: ColorManager.textRed
                onClicked: dialog.restart()
            }
            KVButton {
                visible: dialog.resultText.length > 0
                text: qsTr("Close")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
        }
    }
}
