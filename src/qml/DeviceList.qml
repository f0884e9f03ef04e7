import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Left panel: every group with its phones. A click on a group shows it in the grid; phones can be
// selected within one group and moved to another through the context menu.
Rectangle {
    id: root
    property DeviceGroupManager groupManager: null
    // Selected phones by adb serial, all from sourceGroup.
    property var selectedSerials: []
    property DeviceGroup sourceGroup: null
    // Groups whose phone list is folded away, by name.
    property var collapsedGroups: ({})

    readonly property int menuHeight: 280

    color: ColorManager.backgroundDarkGray

    function isSelected(serial) {
        return selectedSerials.indexOf(serial) >= 0
    }

    function selectOnly(group, serial) {
        selectedSerials = [serial]
        sourceGroup = group
    }

    // Ctrl + click: toggles the phone, but never mixes phones of two groups.
    function toggleSelection(group, serial) {
        const copy = selectedSerials.slice()
        const at = copy.indexOf(serial)
        if (at >= 0) {
            copy.splice(at, 1)
            selectedSerials = copy
            if (copy.length === 0)
                sourceGroup = null
            return
        }
        if (sourceGroup !== null && sourceGroup !== group && copy.length > 0)
            return
        copy.push(serial)
        selectedSerials = copy
        sourceGroup = group
    }

    function clearSelection() {
        selectedSerials = []
        sourceGroup = null
    }

    function clickDevice(group, serial, modifiers) {
        if (modifiers & Qt.ControlModifier)
            toggleSelection(group, serial)
        else
            selectOnly(group, serial)
    }

    // Keeps a menu of about menuHeight pixels inside the panel.
    function menuY(y) {
        return Math.max(0, Math.min(y, height - menuHeight))
    }

    function openMenu(group, device, point) {
        if (!isSelected(device.adbConnectionSerial))
            selectOnly(group, device.adbConnectionSerial)
        deviceMenu.device = device
        deviceMenu.x = point.x
        deviceMenu.y = menuY(point.y)
        deviceMenu.open()
    }

    function isCollapsed(group) {
        return collapsedGroups[group.name] === true
    }

    function setCollapsed(group, collapsed) {
        const copy = Object.assign({}, collapsedGroups)
        copy[group.name] = collapsed
        collapsedGroups = copy
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 10
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            Text {
                Layout.fillWidth: true
                text: qsTr("Device Groups")
                color: ColorManager.textGreen
                font.pixelSize: Theme.fontTitle
                font.bold: true
            }
        }

        Text {
            Layout.fillWidth: true
            visible: groupsView.count === 0
            text: qsTr("No device groups")
            color: ColorManager.textGray
            font.pixelSize: Theme.fontNormal
            wrapMode: Text.WordWrap
        }

        ListView {
            id: groupsView
            objectName: "groupSections"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 6
            model: root.groupManager ? root.groupManager.deviceGroups : []
            ScrollBar.vertical: ScrollBar {}

            delegate: Column {
                id: groupSection
                required property var modelData
                readonly property DeviceGroup group: modelData
                readonly property bool current: root.groupManager !== null && root.groupManager.currentSelectedGroup === group
                readonly property bool expanded: !root.isCollapsed(group)
                width: groupsView.width
                spacing: 4

                Rectangle {
                    objectName: "groupSection_" + groupSection.group.name
                    width: parent.width
                    height: 36
                    radius: Theme.radius
                    color: groupSection.current ? ColorManager.backgroundBlackGreen : ColorManager.backgroundBlack
                    border.color: groupSection.current ? ColorManager.borderDarkGreen : ColorManager.borderDarkGray

                    MouseArea {
                        anchors.fill: parent
                        onClicked: root.groupManager.setCurrentSelectedGroup(groupSection.group)
                    }
                    RowLayout {
                        anchors.fill: parent
                        anchors.leftMargin: 10
                        anchors.rightMargin: 4
                        spacing: 6
                        Text {
                            Layout.fillWidth: true
                            text: groupSection.group.name
                            color: groupSection.current ? ColorManager.textGreen : ColorManager.textWhite
                            font.pixelSize: Theme.fontNormal
                            font.bold: true
                            elide: Text.ElideRight
                        }
                        Text {
                            text: groupSection.group.deviceCount
                            color: ColorManager.textGray
                            font.pixelSize: Theme.fontSmall
                        }
                        HeaderButton {
                            implicitWidth: 26
                            implicitHeight: 26
                            text: groupSection.expanded ? "▲" : "▼"
                            toolTipText: groupSection.expanded ? qsTr("Collapse") : qsTr("Expand")
                            textColor: ColorManager.textGreen
                            onClicked: root.setCollapsed(groupSection.group, groupSection.expanded)
                        }
                    }
                }

                Repeater {
                    model: groupSection.expanded ? groupSection.group.devicesForRepeater : []
                    delegate: Rectangle {
                        id: deviceRow
                        required property var modelData
                        readonly property Device device: modelData
                        readonly property string serial: device ? device.adbConnectionSerial : ""
                        readonly property bool selected: root.isSelected(serial)
                        objectName: "deviceRow_" + serial
                        x: 10
                        width: groupSection.width - 10
                        height: 62
                        radius: Theme.radius
                        color: selected ? ColorManager.backgroundBlackGreen : ColorManager.backgroundBlack
                        border.color: selected ? ColorManager.borderLightGreen : ColorManager.borderDarkGray

                        MouseArea {
                            anchors.fill: parent
                            acceptedButtons: Qt.LeftButton | Qt.RightButton
                            onClicked: mouse => {
                                if (mouse.button === Qt.RightButton)
                                    root.openMenu(groupSection.group, deviceRow.device, mapToItem(root, mouse.x, mouse.y))
                                else
                                    root.clickDevice(groupSection.group, deviceRow.serial, mouse.modifiers)
                            }
                        }
                        Column {
                            anchors.left: parent.left
                            anchors.right: rowButtons.left
                            anchors.verticalCenter: parent.verticalCenter
                            anchors.leftMargin: 8
                            spacing: 2
                            Text {
                                readonly property string nickName: deviceRow.device ? deviceRow.device.nickName : ""
                                width: parent.width
                                // A phone without a nickname has no name line rather than an empty one.
                                visible: nickName.length > 0
                                text: qsTr("name") + ": " + nickName
                                color: ColorManager.textWhite
                                font.pixelSize: Theme.fontSmall
                                elide: Text.ElideRight
                            }
                            Text {
                                width: parent.width
                                text: qsTr("serial") + ": " + deviceRow.serial
                                color: ColorManager.textGray
                                font.pixelSize: Theme.fontSmall
                                elide: Text.ElideRight
                            }
                            Text {
                                width: parent.width
                                text: qsTr("connection type") + ": "
                                      + (deviceRow.device && deviceRow.device.connectionType === Device.WiFi ? "WiFi" : "USB")
                                color: ColorManager.textGray
                                font.pixelSize: Theme.fontSmall
                                elide: Text.ElideRight
                            }
                        }
                        Row {
                            id: rowButtons
                            anchors.right: parent.right
                            anchors.rightMargin: 6
                            anchors.verticalCenter: parent.verticalCenter
                            spacing: 2
                            HeaderButton {
                                implicitWidth: 24
                                implicitHeight: 24
                                readonly property bool running: deviceRow.device !== null && deviceRow.device.running
                                text: running ? "■" : "▶"
                                toolTipText: running ? qsTr("Stop") : qsTr("Start")
                                textColor: running ? ColorManager.textRed : ColorManager.textGreen
                                onClicked: running ? deviceRow.device.stopScrcpySession() : deviceRow.device.startScrcpySession()
                            }
                            HeaderButton {
                                implicitWidth: 24
                                implicitHeight: 24
                                text: "X"
                                toolTipText: qsTr("Remove Device")
                                textColor: ColorManager.textRed
                                onClicked: deviceRow.device.removeFromDeviceGroup()
                            }
                        }
                    }
                }
            }
        }
    }

    DeviceMenu {
        id: deviceMenu
        objectName: "deviceMenu"
        groupManager: root.groupManager
        selectedSerials: root.selectedSerials
        sourceGroup: root.sourceGroup
        onClosed: root.clearSelection()
        onRenameRequested: device => {
            renameDialog.device = device
            renameDialog.open()
        }
        onInformationRequested: device => {
            infoDialog.device = device
            infoDialog.open()
        }
    }

    DeviceRenameDialog { id: renameDialog; objectName: "renameDialog" }
    DeviceInfoDialog { id: infoDialog; objectName: "deviceInfoDialog" }
}
