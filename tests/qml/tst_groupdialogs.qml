import QtQuick
import QtTest
import Korvel

// The group manager dialog refuses unusable names before it asks the manager for anything.
KorvelTestCase {
    id: testCase
    name: "GroupDialogs"
    width: 900
    height: 700

    DeviceGroupManager { id: manager }

    Component {
        id: dialogComponent
        DeviceGroupManagerDialog { groupManager: manager }
    }

    function groupNamed(name) {
        return manager.deviceGroups.find(group => group.name === name)
    }

    function submitName(dialog, name) {
        findChild(dialog, "groupNameField").text = name
        click(findChild(dialog, "groupNameSubmit"))
    }

    function cleanup() {
        // The manager keeps its groups in a file: leave only what was there before.
        for (const group of manager.deviceGroups.slice()) {
            if (group.name.startsWith("Rack "))
                manager.removeDeviceGroup(group)
        }
    }

    function test_refusesNames_data() {
        return [
            { tag: "empty", name: "", error: "Group name cannot be empty" },
            { tag: "blank", name: "   ", error: "Group name cannot be empty" },
            { tag: "taken", name: manager.deviceGroups[0].name, error: "Group name already exists" }
        ]
    }

    function test_refusesNames(data) {
        const dialog = openDialog(dialogComponent)
        const before = manager.deviceGroups.length
        click(findChild(dialog, "newGroupButton"))
        submitName(dialog, data.name)
        const alert = findChild(dialog, "groupNameErrorAlert")
        tryVerify(() => alert.opened)
        compare(alert.title, "Error")
        compare(alert.message, data.error)
        compare(manager.deviceGroups.length, before)
        alert.close()
    }

    function test_createsAndRenames() {
        const dialog = openDialog(dialogComponent)
        const before = manager.deviceGroups.length
        click(findChild(dialog, "newGroupButton"))
        submitName(dialog, "Rack A")
        compare(manager.deviceGroups.length, before + 1)
        const rack = groupNamed("Rack A")
        verify(rack)

        // Renaming to another group's name is refused; to its own name or a new one is not.
        dialog.startEdit(rack)
        submitName(dialog, manager.deviceGroups[0].name)
        const alert = findChild(dialog, "groupNameErrorAlert")
        tryVerify(() => alert.opened)
        compare(alert.message, "Group name already exists")
        alert.close()
        tryVerify(() => !alert.visible)
        compare(rack.name, "Rack A")

        dialog.startEdit(rack)
        submitName(dialog, "Rack A")
        verify(!alert.visible)
        dialog.startEdit(rack)
        submitName(dialog, "Rack B")
        compare(rack.name, "Rack B")
    }

    function test_deletingTheSelectedGroupSelectsAnother() {
        manager.createDeviceGroup("Rack C")
        const rack = groupNamed("Rack C")
        manager.setCurrentSelectedGroup(rack)
        const dialog = openDialog(dialogComponent)
        dialog.deleteGroup(rack)
        verify(!groupNamed("Rack C"))
        compare(manager.currentSelectedGroup, manager.deviceGroups[0])
    }
}
