import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// The current group's tool bar and the grid of its phones.
Item {
    id: root
    property DeviceGroup group: null

    readonly property int cellWidth: group ? group.cellWidth : 220
    readonly property bool showControlButtons: group ? group.showControlButtons : true
    readonly property int orientation: group ? group.orientation : DeviceGroup.Portrait
    readonly property real videoWidth: Theme.cellVideoWidth(cellWidth, showControlButtons)
    readonly property real videoHeight: Theme.videoHeight(videoWidth, orientation)
    readonly property real cellHeight: 20 + videoHeight + 10

    // Big views live here rather than in their cells, so scrolling or switching groups keeps them open.
    property var bigViews: ({})

    function openBigView(device) {
        const key = device.adbConnectionSerial
        const open = bigViews[key]
        if (open) {
            open.raise()
            return
        }
        const view = bigViewComponent.createObject(root, { device: device })
        bigViews[key] = view
        view.show()
        view.raise()
    }

    Component {
        id: bigViewComponent
        BigDeviceView {
            id: bigView
            property string key: deviceKey
            onClosing: {
                delete root.bigViews[bigView.key]
                if (bigView.device && bigView.device.isBigView)
                    bigView.device.setIsBigView(false)
                bigView.destroy()
            }
        }
    }

    RowLayout {
        id: toolBar
        objectName: "groupToolBar"
        anchors.left: parent.left
        anchors.right: parent.right
        height: 34
        spacing: 6

        Text {
            objectName: "deviceCountText"
            text: qsTr("Devices") + ": " + (root.group ? root.group.deviceCount : 0)
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontTitle
            font.bold: true
            Layout.rightMargin: 8
        }
        KVButton {
            objectName: "startAllButton"
            text: qsTr("Start All")
            enabled: root.group !== null
            onClicked: root.group.startAllDevices()
        }
        KVButton {
            objectName: "stopAllButton"
            text: qsTr("Stop All")
            textColor: ColorManager.textWhite
            enabled: root.group !== null
            onClicked: root.group.stopAllDevices()
        }
        KVButton {
            objectName: "clearAllButton"
            text: qsTr("Clear All")
            textColor: ColorManager.textRed
            enabled: root.group !== null
            onClicked: root.group.clearDevices()
        }
        KVButton {
            objectName: "groupControlButton"
            readonly property bool controlling: root.group !== null && root.group.groupControlMode
            text: controlling ? qsTr("🚩 Group Controlling") : qsTr("Start Group Control")
            textColor: controlling ? ColorManager.textRed : ColorManager.textGreen
            enabled: root.group !== null
            onClicked: controlling ? root.group.stopGroupControl() : root.group.startGroupControl()
        }
        KVButton {
            objectName: "orientationButton"
            text: root.orientation === DeviceGroup.Portrait ? qsTr("Landscape") : qsTr("Portrait")
            textColor: ColorManager.textWhite
            enabled: root.group !== null
            onClicked: root.group.orientation = root.orientation === DeviceGroup.Portrait ? DeviceGroup.Landscape
                                                                                            : DeviceGroup.Portrait
        }
        KVButton {
            id: moreButton
            objectName: "moreGroupActionsButton"
            text: qsTr("More Group Actions") + "  ▾"
            textColor: ColorManager.textWhite
            enabled: root.group !== null
            onClicked: moreMenu.visible ? moreMenu.close() : moreMenu.open()

            Menu {
                id: moreMenu
                objectName: "moreGroupActionsMenu"
                y: moreButton.height
                MenuItem { text: qsTr("Screenshot"); onTriggered: root.showOperation(root.group.actions.screenshotAllDevices()) }
                MenuItem {
                    text: qsTr("Install APK")
                    onTriggered: {
                        const group = root.group
                        picker.pick(qsTr("Select APK File"), [qsTr("APK files (*.apk)")], path => root.showOperation(group.actions.installApk(path)))
                    }
                }
                MenuItem {
                    text: qsTr("Upload File")
                    onTriggered: {
                        const group = root.group
                        picker.pick(qsTr("Select File"), [qsTr("All files (*.*)")], path => root.showOperation(group.actions.uploadFile(path)))
                    }
                }
                MenuItem {
                    text: qsTr("Run AutoJS")
                    onTriggered: {
                        const group = root.group
                        picker.pick(qsTr("Select autojs Script"), [qsTr("autojs files (*.js)")], path => root.showOperation(group.actions.runAutojs(path)))
                    }
                }
                MenuItem { text: qsTr("Stop AutoJS"); onTriggered: root.group.actions.stopAllAutojs() }
                MenuItem { text: qsTr("ADB Commands"); onTriggered: adbCommandDialog.open() }
                MenuItem { text: qsTr("Settings"); onTriggered: groupSettingsDialog.open() }
            }
        }
        Item { Layout.fillWidth: true }
        Text {
            text: root.group ? root.group.name : ""
            color: ColorManager.textGray
            font.pixelSize: Theme.fontNormal
            elide: Text.ElideLeft
            Layout.maximumWidth: 220
        }
    }

    GridView {
        id: grid
        objectName: "deviceGrid"
        anchors.top: toolBar.bottom
        anchors.topMargin: 10
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        clip: true
        model: root.group
        cellWidth: root.cellWidth
        cellHeight: root.cellHeight
        cacheBuffer: Math.ceil(2 * root.cellHeight)
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar { policy: ScrollBar.AsNeeded }

        delegate: Item {
            id: cell
            required property Device device
            width: grid.cellWidth
            height: grid.cellHeight

            DeviceView {
                id: view
                x: 5
                y: 5
                width: root.cellWidth - 10
                height: root.cellHeight - 10
                device: cell.device
                showControlButtons: root.showControlButtons
                // Cells kept in the grid's cache buffer stay out of sight and do not decode.
                inViewport: cell.y + cell.height > grid.contentY && cell.y < grid.contentY + grid.height
                onBigViewRequested: device => root.openBigView(device)
            }
        }
    }

    FilePicker { id: picker }

    function showOperation(operation) {
        operationDialog.operation = operation
        operationDialog.open()
    }

    GroupOperationDialog { id: operationDialog; objectName: "groupOperationDialog" }

    ADBCommandDialog {
        id: adbCommandDialog
        objectName: "groupAdbCommandDialog"
        deviceGroup: root.group
    }

    GroupSettingsDialog {
        id: groupSettingsDialog
        objectName: "groupSettingsDialog"
        group: root.group
    }
}
