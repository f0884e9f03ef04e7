import QtQuick
import QtTest
import Korvel

// Selection in the device list stays within one group; the context menu stays inside the panel.
KorvelTestCase {
    id: testCase
    name: "DeviceList"
    width: 400
    height: 700

    DeviceGroupManager { id: manager }
    DeviceGroup { id: rackA }
    DeviceGroup { id: rackB }

    Component { id: listComponent; DeviceList { width: 300; height: 600 } }
    Component { id: menuComponent; DeviceMenu {} }

    function test_selection() {
        const list = createTemporaryObject(listComponent, testCase)
        list.clickDevice(rackA, "s1", Qt.NoModifier)
        compare(list.selectedSerials, ["s1"])
        compare(list.sourceGroup, rackA)

        list.clickDevice(rackA, "s2", Qt.ControlModifier)
        compare(list.selectedSerials, ["s1", "s2"])

        // A phone of another group is not added while phones of the first are selected.
        list.clickDevice(rackB, "s3", Qt.ControlModifier)
        compare(list.selectedSerials, ["s1", "s2"])
        compare(list.sourceGroup, rackA)

        list.clickDevice(rackA, "s1", Qt.ControlModifier)
        compare(list.selectedSerials, ["s2"])
        list.clickDevice(rackA, "s2", Qt.ControlModifier)
        compare(list.selectedSerials, [])
        compare(list.sourceGroup, null)

        list.clickDevice(rackB, "s3", Qt.ControlModifier)
        compare(list.selectedSerials, ["s3"])
        compare(list.sourceGroup, rackB)

        // A plain click starts over, in any group.
        list.clickDevice(rackA, "s4", Qt.NoModifier)
        compare(list.selectedSerials, ["s4"])
        compare(list.sourceGroup, rackA)
    }

    function test_menuStaysInsideThePanel_data() {
        return [
            { tag: "top", y: 40, expected: 40 },
            { tag: "just fits", y: 320, expected: 320 },
            { tag: "near the bottom", y: 500, expected: 320 }
        ]
    }

    function test_menuStaysInsideThePanel(data) {
        const list = createTemporaryObject(listComponent, testCase)
        compare(list.menuY(data.y), data.expected)
    }

    function test_menuEntries() {
        const menu = createTemporaryObject(menuComponent, testCase)
        menu.open()
        tryVerify(() => menu.opened)
        const texts = []
        for (let i = 0; i < menu.count; ++i) {
            const item = menu.itemAt(i)
            if (item.text !== undefined)
                texts.push(item.text + (item.enabled ? "" : " (disabled)"))
        }
        compare(texts, ["Naming Device (disabled)", "Enable WiFi Connection (disabled)", "Disconnect WiFi (disabled)",
                        "Device Information (disabled)", "Move to Group (disabled)"])
        menu.close()
    }

    function test_moveToGroupListsEveryGroup() {
        const before = manager.deviceGroups.length
        const menu = createTemporaryObject(menuComponent, testCase,
                                           { groupManager: manager, selectedSerials: ["s1"],
                                             sourceGroup: manager.deviceGroups[0] })
        manager.createDeviceGroup("Rack Move")
        const moveItem = menu.itemAt(5)
        compare(moveItem.text, "Move to Group")
        verify(moveItem.enabled)
        const groups = moveItem.subMenu
        compare(groups.count, before + 1)
        // The selection's own group cannot be chosen.
        verify(!groups.itemAt(0).enabled)
        compare(groups.itemAt(before).text, "Rack Move")
        verify(groups.itemAt(before).enabled)
        manager.removeDeviceGroup(manager.deviceGroups[before])
        compare(groups.count, before)
    }
}
