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
    // Menus, combo boxes and sliders of the Fusion style follow the dark theme.
    palette {
        window: ColorManager.backgroundDarkGray
        windowText: ColorManager.textWhite
        base: ColorManager.backgroundBlack
        alternateBase: ColorManager.backgroundDarkGray
        text: ColorManager.textWhite
        button: ColorManager.backgroundDarkGray
        buttonText: ColorManager.textWhite
        highlight: ColorManager.primaryDarkGreen
        highlightedText: ColorManager.textBlack
        placeholderText: ColorManager.textGray
        toolTipBase: ColorManager.backgroundDarkGray
        toolTipText: ColorManager.textWhite
        light: ColorManager.borderDarkGray
        midlight: ColorManager.borderDarkGray
        mid: ColorManager.borderDarkGray
        dark: ColorManager.backgroundPureBlack
    }

    readonly property DeviceGroup currentGroup: groupManager.currentSelectedGroup

    DeviceGroupManager {
        id: groupManager
        objectName: "deviceGroupManager"
    }

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
                MenuItem { text: qsTr("Scan Devices"); onTriggered: scanDialog.open() }
                MenuItem { text: qsTr("Manage Device Groups"); onTriggered: groupManagerDialog.open() }
                MenuItem { text: qsTr("Restart ADB Server"); onTriggered: adbRestartDialog.open() }
            }
            MenuButton {
                objectName: "toolsMenu"
                text: qsTr("Tools")
                MenuItem { text: qsTr("Common Phrases"); onTriggered: commonPhrasesDialog.open() }
                MenuItem { text: qsTr("Key Mapping"); onTriggered: keyMappingDialog.open() }
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
            groupManager: groupManager
        }

        Rectangle {
            objectName: "gridPanel"
            SplitView.fillWidth: true
            color: ColorManager.backgroundBlack

            PhoneScreenGrid {
                id: phoneGrid
                objectName: "phoneScreenGrid"
                anchors.fill: parent
                anchors.margins: 10
                group: window.currentGroup
            }

            KVButton {
                objectName: "scanButton"
                anchors.centerIn: parent
                visible: window.currentGroup === null || window.currentGroup.deviceCount === 0
                text: qsTr("No Devices In This Group, Click To Scan")
                implicitHeight: 40
                onClicked: scanDialog.open()
            }
        }
    }

    DeviceScanDialog {
        id: scanDialog
        objectName: "scanDialog"
        groupManager: groupManager
    }
    DeviceGroupManagerDialog {
        id: groupManagerDialog
        objectName: "groupManagerDialog"
        groupManager: groupManager
    }
    ADBRestartDialog {
        id: adbRestartDialog
        objectName: "adbRestartDialog"
        groupManager: groupManager
    }
    AboutDialog {
        id: aboutDialog
        objectName: "aboutDialog"
    }
    AppSettingsDialog {
        id: appSettingsDialog
        objectName: "appSettingsDialog"
    }
    CommonPhrasesDialog {
        id: commonPhrasesDialog
        objectName: "commonPhrasesDialog"
    }
    KeyMappingDialog {
        id: keyMappingDialog
        objectName: "keyMappingDialog"
        group: window.currentGroup
    }

    // A data file that could not be read or saved is named to the user, never lost in silence.
    KVAlert {
        id: fileAlert
        objectName: "fileAlert"
        function report(messages) {
            const text = messages.filter(message => message !== "").join("

")
            if (text !== "")
                show(qsTr("Data Files"), text)
        }
    }
    Connections {
        target: groupManager
        function onFileMessageChanged() { fileAlert.report([groupManager.fileMessage]) }
    }
    Connections {
        target: DeviceSettings
        function onFileMessageChanged() { fileAlert.report([DeviceSettings.fileMessage]) }
    }
    Connections {
        target: KeyMapping
        function onFileMessageChanged() { fileAlert.report([KeyMapping.fileMessage]) }
    }
    Connections {
        target: CommonPhraseManager
        function onFileMessageChanged() { fileAlert.report([CommonPhraseManager.fileMessage]) }
    }
    Component.onCompleted: fileAlert.report([groupManager.fileMessage, DeviceSettings.fileMessage,
                                             KeyMapping.fileMessage, CommonPhraseManager.fileMessage])
}
