import QtQuick
import QtQuick.Controls
import Korvel

// The context menu of a phone in the device list.
Menu {
    id: root
    property Device device: null
    property DeviceGroupManager groupManager: null
    // The selection the menu acts on, and the group it comes from.
    property var selectedSerials: []
    property DeviceGroup sourceGroup: null

    signal renameRequested(Device device)
    signal informationRequested(Device device)

    MenuItem {
        text: qsTr("Naming Device")
        enabled: root.device !== null
        onTriggered: root.renameRequested(root.device)
    }
    MenuItem {
        text: qsTr("Enable WiFi Connection")
        enabled: root.device !== null && root.device.connectionType === Device.USB
        onTriggered: root.device.actions.setWiFiConnection()
    }
    MenuItem {
        text: qsTr("Disconnect WiFi")
        enabled: root.device !== null && root.device.connectionType === Device.WiFi
        onTriggered: root.device.actions.disconnectWiFi()
    }
    MenuItem {
        text: qsTr("Device Information")
        enabled: root.device !== null
        onTriggered: root.informationRequested(root.device)
    }
    MenuSeparator {}
    Menu {
        id: moveMenu
        title: qsTr("Move to Group")
        enabled: root.selectedSerials.length > 0 && root.sourceGroup !== null

        Instantiator {
            model: root.groupManager ? root.groupManager.deviceGroups : []
            delegate: MenuItem {
                required property var modelData
                // Null while the list of groups is being rebuilt.
                readonly property DeviceGroup targetGroup: modelData ? modelData : null
                text: targetGroup ? targetGroup.name : ""
                enabled: targetGroup !== null && targetGroup !== root.sourceGroup
                onTriggered: {
                    if (root.sourceGroup && targetGroup)
                        root.sourceGroup.moveDevicesToGroup(root.selectedSerials, targetGroup)
                    root.close()
                }
            }
            onObjectAdded: (index, object) => moveMenu.insertItem(index, object)
            onObjectRemoved: (index, object) => moveMenu.removeItem(object)
        }
    }
}
