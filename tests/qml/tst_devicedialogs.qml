import QtQuick
import QtQuick.Controls
import QtTest
import Korvel

// Every per-phone and per-group dialog, and the big view window, opens with its title and not a
// single QML warning.
TestCase {
    id: testCase
    name: "DeviceDialogs"
    when: windowShown
    visible: true
    width: 1200
    height: 900

    function init() {
        failOnWarning(/.*/)
    }

    DeviceGroup { id: testGroup }
    Device { id: testDevice }

    Component { id: settingsComponent; GroupSettingsDialog { group: testGroup } }
    Component { id: commandComponent; ADBCommandDialog { deviceGroup: testGroup } }
    Component { id: infoComponent; DeviceInfoDialog { device: testDevice } }
    Component { id: renameComponent; DeviceRenameDialog { device: testDevice } }
    Component { id: bigViewComponent; BigDeviceView { device: testDevice } }
    Component { id: operationComponent; GroupOperationDialog { operation: testGroup.executeADBCommand("shell true") } }

    function openAndClose(component, expectedTitle) {
        const dialog = createTemporaryObject(component, testCase)
        verify(dialog)
        dialog.open()
        tryVerify(() => dialog.opened)
        compare(dialog.title, expectedTitle)
        dialog.close()
        tryVerify(() => !dialog.visible)
    }

    function test_dialogsOpen_data() {
        return [
            { tag: "group settings", component: settingsComponent, title: "Group Settings" },
            { tag: "adb command", component: commandComponent, title: "ADB Command" },
            { tag: "device information", component: infoComponent, title: "Device Information" },
            { tag: "rename", component: renameComponent, title: "Rename Device" },
            { tag: "group operation", component: operationComponent, title: "ADB Command" }
        ]
    }

    function test_dialogsOpen(data) {
        openAndClose(data.component, data.title)
    }

    function test_bigViewWindow() {
        const view = createTemporaryObject(bigViewComponent, testCase)
        verify(view)
        view.show()
        tryVerify(() => view.visible)
        compare(view.title, "Big Screen")
        view.close()
    }
}
