import QtQuick
import QtTest
import Korvel

// Every per-phone and per-group dialog, and the big view window, opens with its title and not a
// single QML warning.
KorvelTestCase {
    id: testCase
    name: "DeviceDialogs"
    width: 1200
    height: 900

    DeviceGroup { id: testGroup }
    Device { id: testDevice }

    Component { id: settingsComponent; GroupSettingsDialog { group: testGroup } }
    Component { id: commandComponent; ADBCommandDialog { deviceGroup: testGroup } }
    Component { id: infoComponent; DeviceInfoDialog { device: testDevice } }
    Component { id: renameComponent; DeviceRenameDialog { device: testDevice } }
    Component { id: bigViewComponent; BigDeviceView { device: testDevice } }
    Component { id: operationComponent; GroupOperationDialog { operation: testGroup.executeADBCommand("shell true") } }

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
        const dialog = openDialog(data.component)
        compare(dialog.title, data.title)
        dialog.close()
        tryVerify(() => !dialog.visible)
    }

    function test_bigViewWindow() {
        const view = createTemporaryObject(bigViewComponent, testCase)
        view.show()
        tryVerify(() => view.visible)
        compare(view.title, "Big Screen")
        view.close()
    }
}
