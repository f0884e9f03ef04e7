import QtQuick
import QtTest
import Korvel

// The device grid follows its group's settings and its tool bar acts on the group; selection in the
// device list stays within one group and its menu inside the panel; a phone's cell before its
// session runs: its overlays, its status messages and its button column.
KorvelTestCase {
    id: testCase
    name: "Grid"
    width: 900
    height: 700

    Component { id: groupComponent; DeviceGroup {} }
    Component { id: gridComponent; PhoneScreenGrid { width: 900; height: 700 } }

    function makeGrid(group) {
        return createTemporaryObject(gridComponent, testCase, { group: group })
    }

    function test_settingsReachTheCells() {
        const group = createTemporaryObject(groupComponent, testCase)
        const grid = makeGrid(group)
        const cells = findChild(grid, "deviceGrid")
        group.cellWidth = 320
        compare(cells.cellWidth, 320)
        const narrow = grid.videoWidth
        const shortCell = cells.cellHeight
        // Without the button column the picture takes its room, and its cell grows to keep the shape.
        group.showControlButtons = false
        verify(grid.videoWidth > narrow)
        verify(cells.cellHeight > shortCell)
        // Two rows beyond the visible area stay alive.
        verify(cells.cacheBuffer >= 2 * cells.cellHeight)
    }

    function test_orientationToggleWritesTheGroup() {
        const group = createTemporaryObject(groupComponent, testCase)
        const grid = makeGrid(group)
        const cells = findChild(grid, "deviceGrid")
        const portrait = cells.cellHeight
        const toggle = findChild(grid, "orientationButton")
        compare(toggle.text, "Landscape")
        click(toggle)
        compare(group.orientation, DeviceGroup.Landscape)
        compare(toggle.text, "Portrait")
        verify(cells.cellHeight < portrait)
        click(toggle)
        compare(group.orientation, DeviceGroup.Portrait)
        compare(cells.cellHeight, portrait)
    }

    function test_noGroupSelected() {
        const grid = makeGrid(null)
        compare(findChild(grid, "deviceCountText").text, "Devices: 0")
        for (const name of ["startAllButton", "stopAllButton", "groupControlButton", "moreGroupActionsButton"])
            verify(!findChild(grid, name).enabled, name)
    }

    function test_groupControlNeedsADevice() {
        const group = createTemporaryObject(groupComponent, testCase)
        const toggle = findChild(makeGrid(group), "groupControlButton")
        click(toggle)
        verify(!group.groupControlMode)
        compare(toggle.text, "Start Group Control")
    }

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

    Component { id: deviceComponent; Device {} }
    Component { id: viewComponent; DeviceView { width: 210; height: 324 } }
    Component { id: buttonsComponent; ControlButtons { width: 34; height: 640 } }

    function makeView(properties) {
        const device = createTemporaryObject(deviceComponent, testCase)
        return { device: device, view: createTemporaryObject(viewComponent, testCase,
                                                             Object.assign({ device: device }, properties || {})) }
    }

    function buttons(column) {
        return Array.from(findChild(column, "homeButton").parent.children).filter(child => child.tip !== undefined)
    }

    function test_stoppedPhoneOffersToStart() {
        const cell = makeView()
        verify(findChild(cell.view, "clickToStart").visible)
        verify(!findChild(cell.view, "fpsText").visible)
        verify(!findChild(cell.view, "inputArea").visible)
        verify(!findChild(cell.view, "onBigScreenText").visible)
        compare(findChild(cell.view, "startStopButton").text, "▶")
        verify(findChild(cell.view, "bigViewButton").visible)
        verify(!findChild(cell.view, "hostFlag").visible)
    }

    // A message hides by itself after its time; a new one replaces it and starts its own time.
    function test_newMessageRestartsTheTimer() {
        const cell = makeView()
        const control = makeView({ x: 220 })
        const strip = findChild(cell.view, "messageStrip")
        const controlStrip = findChild(control.view, "messageStrip")
        verify(!strip.visible)
        cell.device.deviceMessage("Uploading File", MessageKind.Info, 1000)
        control.device.deviceMessage("Uploading File", MessageKind.Info, 500)
        tryVerify(() => !controlStrip.visible, 5000)
        cell.device.deviceMessage("File upload failed", MessageKind.Error, 1000)
        // Gone at least 1100 ms after the first message: its time is over, the second one's is not.
        control.device.deviceMessage("Uploading File", MessageKind.Info, 600)
        tryVerify(() => !controlStrip.visible, 5000)
        verify(strip.visible)
        compare(strip.text, "File upload failed")
        compare(strip.kind, MessageKind.Error)
        // The close button hides it before its time.
        click(findChild(strip, "messageClose"))
        verify(!strip.visible)
    }

    function test_unboundButtonsAreInert() {
        const column = createTemporaryObject(buttonsComponent, testCase)
        for (const button of buttons(column))
            verify(!button.enabled, button.tip)
    }

    function test_controlButtonsFollowTheDevice() {
        const device = createTemporaryObject(deviceComponent, testCase)
        const column = createTemporaryObject(buttonsComponent, testCase, { device: device })
        const button = tip => buttons(column).find(button => button.tip === tip)
        verify(findChild(column, "homeButton").enabled)
        // Audio is switched on the phone; the button then reads the phone's new state.
        click(button("Audio Disabled"))
        compare(device.isAudioEnabled, true)
        verify(button("Audio Enabled"))
        // Recording is offered on every bound phone; it reads the phone's own recorder.
        verify(button("Record Video").enabled)
        compare(device.videoRecorder.isRecording, false)
        // The profile picked from the button is this phone's, and the button names it; "no key
        // map" takes it off again.
        KeyMapping.removeProfile("Cell")
        KeyMapping.addProfile("Cell")
        const picked = (tip, entry) => {
            click(button(tip))
            let item = null
            tryVerify(() => (item = entry()))
            click(item)
        }
        const overlay = testCase.Window.window.contentItem
        picked("Key Mapping", () => itemWithText(overlay, "Cell"))
        compare(device.currentKeyMappingProfile.name, "Cell")
        picked("KeyMapping: Cell", () => findChild(overlay, "noKeyMap"))
        compare(device.currentKeyMappingProfile, null)
        verify(button("Key Mapping"))
        KeyMapping.removeProfile("Cell")
    }

    function test_screenPositionOverlay() {
        // Tall enough for the whole button column to be on screen.
        const cell = makeView({ height: 680 })
        const toggle = buttons(cell.view).find(button => button.tip === "Screen Position")
        const input = findChild(cell.view, "inputArea")
        click(toggle)
        verify(!input.enabled)
        click(toggle)
        verify(input.enabled)
    }
}
