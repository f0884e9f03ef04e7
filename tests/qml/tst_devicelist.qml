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

    function test_selectionStaysInOneGroup() {
        const list = createTemporaryObject(listComponent, testCase)
        // Each click: group, serial, Ctrl held; then the selection and the group it belongs to.
        const steps = [
            [rackA, "s1", false, ["s1"], rackA],
            [rackA, "s2", true, ["s1", "s2"], rackA],
            // A phone of another group is not added while phones of the first are selected.
            [rackB, "s3", true, ["s1", "s2"], rackA],
            [rackA, "s1", true, ["s2"], rackA],
            [rackA, "s2", true, [], null],
            [rackB, "s3", true, ["s3"], rackB],
            // A plain click starts over, in any group.
            [rackA, "s4", false, ["s4"], rackA]
        ]
        for (const [group, serial, ctrl, selected, source] of steps) {
            list.clickDevice(group, serial, ctrl ? Qt.ControlModifier : Qt.NoModifier)
            compare(list.selectedSerials, selected)
            compare(list.sourceGroup, source)
        }
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

    function test_menuWithoutSelectionIsInert() {
        const menu = openDialog(menuComponent)
        for (let i = 0; i < menu.count; ++i)
            verify(menu.itemAt(i).text === undefined || !menu.itemAt(i).enabled, menu.itemAt(i).text)
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
