import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Lists the attached phones that are in no group and adds the chosen ones to a group.
Dialog {
    id: dialog
    property DeviceGroupManager groupManager: null
    property DeviceGroup targetGroup: null
    // Checked phones, by adb serial.
    property var checkedSerials: []

    readonly property var availableDevices: groupManager ? groupManager.availableDeviceInfos : []
    readonly property bool scanning: groupManager !== null && groupManager.isScanning
    readonly property bool canAdd: checkedSerials.length > 0 && targetGroup !== null

    title: qsTr("Scan Devices")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 760
    height: 540
    padding: 14

    function isChecked(serial) {
        return checkedSerials.indexOf(serial) >= 0
    }

    function toggle(serial) {
        const copy = checkedSerials.slice()
        const at = copy.indexOf(serial)
        if (at >= 0)
            copy.splice(at, 1)
        else
            copy.push(serial)
        checkedSerials = copy
    }

    function allChecked() {
        for (let i = 0; i < availableDevices.length; ++i) {
            if (!isChecked(availableDevices[i].adb_serial))
                return false
        }
        return availableDevices.length > 0
    }

    function setAllChecked(checked) {
        const serials = []
        if (checked) {
            for (let i = 0; i < availableDevices.length; ++i)
                serials.push(availableDevices[i].adb_serial)
        }
        checkedSerials = serials
    }

    function addToGroup() {
        if (!canAdd)
            return
        const chosen = []
        for (let i = 0; i < availableDevices.length; ++i) {
            if (isChecked(availableDevices[i].adb_serial))
                chosen.push(availableDevices[i])
        }
        if (targetGroup.addDevices(chosen)) {
            checkedSerials = []
            dialog.close()
        }
    }

    function scan() {
        if (groupManager)
            groupManager.scanDevices()
    }

    onAboutToShow: {
        checkedSerials = []
        targetGroup = groupManager ? groupManager.currentSelectedGroup : null
        scanDelay.restart()
    }
    onClosed: {
        scanDelay.stop()
        checkedSerials = []
        if (groupManager)
            groupManager.clearAvailableDevices()
    }

    Timer {
        id: scanDelay
        interval: 300
        onTriggered: dialog.scan()
    }

    Connections {
        target: dialog.groupManager
        function onScanError(message) {
            if (dialog.visible)
                errorAlert.show(qsTr("Error"), message)
        }
    }

    KVAlert {
        id: errorAlert
        objectName: "scanErrorAlert"
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

    component Cell: Text {
        color: ColorManager.textWhite
        font.pixelSize: Theme.fontNormal
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }

    contentItem: ColumnLayout {
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            Text {
                text: qsTr("Target Group:")
                color: ColorManager.textWhite
                font.pixelSize: Theme.fontNormal
            }
            ComboBox {
                id: groupChooser
                objectName: "scanGroupChooser"
                Accessible.name: qsTr("Target Group:")
                Layout.preferredWidth: 240
                model: dialog.groupManager ? dialog.groupManager.deviceGroups : []
                textRole: "name"
                currentIndex: model ? model.indexOf(dialog.targetGroup) : -1
                onActivated: index => dialog.targetGroup = model[index]
            }
            Item { Layout.fillWidth: true }
            // Made only while a scan runs: the style's spinner keeps its animation going once it
            // exists, even hidden in a closed dialog, and that alone kept the window redrawing.
            Loader {
                objectName: "scanBusy"
                active: dialog.scanning && dialog.visible
                Layout.preferredWidth: 28
                Layout.preferredHeight: 28
                sourceComponent: BusyIndicator { running: true }
            }
            KVButton {
                objectName: "scanRefreshButton"
                text: qsTr("Refresh")
                onClicked: dialog.scan()
            }
        }

        // Column heads.
        Rectangle {
            Layout.fillWidth: true
            height: 30
            color: ColorManager.backgroundBlackGreen
            radius: Theme.radius
            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 8
                anchors.rightMargin: 8
                spacing: 8
                Cell { text: qsTr("Select"); color: ColorManager.textGreen; Layout.preferredWidth: 60 }
                Cell { text: qsTr("Type"); color: ColorManager.textGreen; Layout.preferredWidth: 60 }
                Cell { text: qsTr("Nickname"); color: ColorManager.textGreen; Layout.preferredWidth: 150 }
                Cell { text: qsTr("Serial Number"); color: ColorManager.textGreen; Layout.preferredWidth: 200 }
                Cell { text: qsTr("Product"); color: ColorManager.textGreen; Layout.fillWidth: true }
            }
        }

        ListView {
            id: deviceList
            objectName: "scanDeviceList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: dialog.availableDevices
            ScrollBar.vertical: ScrollBar {}

            delegate: Rectangle {
                id: row
                required property var modelData
                required property int index
                readonly property string serial: modelData.adb_serial
                objectName: "scanRow_" + serial
                width: deviceList.width
                height: 34
                color: index % 2 === 0 ? ColorManager.backgroundBlack : ColorManager.backgroundDarkGray

                MouseArea {
                    anchors.fill: parent
                    onClicked: dialog.toggle(row.serial)
                }
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 8
                    anchors.rightMargin: 8
                    spacing: 8
                    Item {
                        Layout.preferredWidth: 60
                        Layout.fillHeight: true
                        KVCheckBox {
                            anchors.verticalCenter: parent.verticalCenter
                            Accessible.name: qsTr("Select") + " " + row.serial
                            checked: dialog.isChecked(row.serial)
                            onClicked: dialog.toggle(row.serial)
                        }
                    }
                    Cell {
                        text: row.modelData.is_usb_connection ? "USB" : "WiFi"
                        color: row.modelData.is_usb_connection ? ColorManager.textGreen : ColorManager.textYellow
                        Layout.preferredWidth: 60
                    }
                    Cell {
                        text: DeviceSettings.getDeviceNickname(row.serial)
                        Layout.preferredWidth: 150
                    }
                    Cell { text: row.serial; Layout.preferredWidth: 200 }
                    Cell { text: row.modelData.product; Layout.fillWidth: true }
                }
            }

            Text {
                objectName: "noDevicesText"
                anchors.centerIn: parent
                visible: deviceList.count === 0 && !dialog.scanning
                text: qsTr("No devices found")
                color: ColorManager.textGray
                font.pixelSize: Theme.fontNormal
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            KVCheckBox {
                objectName: "scanSelectAll"
                visible: dialog.availableDevices.length > 1
                text: qsTr("Select All") + " (" + dialog.availableDevices.length + ")"
                checked: dialog.allChecked()
                onClicked: dialog.setAllChecked(checked)
            }
            Item { Layout.fillWidth: true }
            KVButton {
                objectName: "scanAddButton"
                text: qsTr("Add to Group")
                enabled: dialog.canAdd
                textColor: dialog.canAdd ? ColorManager.textGreen : ColorManager.textGray
                onClicked: dialog.addToGroup()
            }
            KVButton {
                objectName: "scanCloseButton"
                text: qsTr("Close")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
        }
    }
}
