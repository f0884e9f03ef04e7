import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

ApplicationWindow {
    id: window
    width: 1480
    height: 800
    visible: true
    title: qsTr("Phone Farms")
    color: ColorManager.backgroundBlack

    header: ToolBar {
        id: headerBar
        objectName: "headerBar"
        height: Theme.headerHeight
        background: Rectangle { color: Theme.headerBar }

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 14
            anchors.rightMargin: 8
            spacing: 4

            Text {
                objectName: "headerTitle"
                text: qsTr("Korvel Multi-Phones Control")
                color: ColorManager.textGreen
                font.pixelSize: 16
                font.bold: true
            }
            Item { Layout.fillWidth: true }

            MenuButton {
                objectName: "devicesMenu"
                text: qsTr("Devices")
                // These open dialogs that arrive with device groups.
                MenuItem { text: qsTr("Scan Devices"); enabled: false }
                MenuItem { text: qsTr("Manage Device Groups"); enabled: false }
                MenuItem { text: qsTr("Restart ADB Server"); enabled: false }
            }
            MenuButton {
                objectName: "toolsMenu"
                text: qsTr("Tools")
                MenuItem { text: qsTr("Common Phrases"); enabled: false }
                MenuItem { text: qsTr("Key Mapping"); enabled: false }
            }
            MenuButton {
                objectName: "settingsMenu"
                text: qsTr("Settings")
                MenuItem { text: qsTr("About APP"); onTriggered: aboutDialog.open() }
                MenuItem { text: qsTr("APP Settings"); onTriggered: appSettingsDialog.open() }
            }
        }
    }

    SplitView {
        anchors.fill: parent
        orientation: Qt.Horizontal

        DeviceList {
            objectName: "deviceList"
            SplitView.preferredWidth: 300
            SplitView.minimumWidth: 200
        }

        Rectangle {
            objectName: "gridPanel"
            SplitView.fillWidth: true
            color: ColorManager.backgroundBlack

            KVButton {
                objectName: "scanButton"
                anchors.centerIn: parent
                text: qsTr("No Devices In This Group, Click To Scan")
                enabled: false
            }
        }
    }

    AboutDialog { id: aboutDialog }
    AppSettingsDialog { id: appSettingsDialog }
}
