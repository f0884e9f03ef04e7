import QtQuick
import QtTest
import Korvel

// Sizes of the device grid and its cells, and the tool bar's texts, for a group's settings.
TestCase {
    id: testCase
    name: "GridLayout"
    when: windowShown
    visible: true
    width: 900
    height: 700

    function init() {
        failOnWarning(/.*/)
    }

    Component { id: groupComponent; DeviceGroup {} }
    Component { id: gridComponent; PhoneScreenGrid { width: 900; height: 700 } }
    Component { id: viewComponent; DeviceView {} }

    function makeGrid(group) {
        return createTemporaryObject(gridComponent, testCase, { group: group })
    }

    function test_cellSize_data() {
        return [
            { tag: "portrait, buttons", cellWidth: 220, buttons: true, orientation: DeviceGroup.Portrait,
              videoWidth: 171, cellHeight: 334 },
            { tag: "portrait, no buttons", cellWidth: 220, buttons: false, orientation: DeviceGroup.Portrait,
              videoWidth: 210, cellHeight: 30 + 210 * 16 / 9 },
            { tag: "landscape, wide, no buttons", cellWidth: 400, buttons: false, orientation: DeviceGroup.Landscape,
              videoWidth: 390, cellHeight: 249.375 }
        ]
    }

    function test_cellSize(data) {
        const group = createTemporaryObject(groupComponent, testCase)
        group.cellWidth = data.cellWidth
        group.showControlButtons = data.buttons
        group.orientation = data.orientation
        const grid = makeGrid(group)
        compare(grid.cellWidth, data.cellWidth)
        fuzzyCompare(grid.videoWidth, data.videoWidth, 1e-9)
        fuzzyCompare(grid.cellHeight, data.cellHeight, 1e-9)

        const view = findChild(grid, "deviceGrid")
        compare(view.cellWidth, data.cellWidth)
        fuzzyCompare(view.cellHeight, data.cellHeight, 1e-9)
        // Two rows beyond the visible area stay alive.
        verify(view.cacheBuffer >= 2 * data.cellHeight)
        verify(view.cacheBuffer < 2 * data.cellHeight + 1)
    }

    function test_cellFollowsSettingChanges() {
        const group = createTemporaryObject(groupComponent, testCase)
        const grid = makeGrid(group)
        compare(grid.cellHeight, 334)
        group.cellWidth = 320
        compare(grid.cellWidth, 320)
        fuzzyCompare(grid.cellHeight, 30 + 271 * 16 / 9, 1e-9)
        group.showControlButtons = false
        fuzzyCompare(grid.cellHeight, 30 + 310 * 16 / 9, 1e-9)
    }

    function test_noGroupSelected() {
        const grid = makeGrid(null)
        compare(grid.cellWidth, 220)
        compare(grid.cellHeight, 334)
        compare(findChild(grid, "deviceCountText").text, "Devices: 0")
        compare(findChild(grid, "groupControlButton").text, "Start Group Control")
        compare(findChild(grid, "orientationButton").text, "Landscape")
        verify(!findChild(grid, "startAllButton").enabled)
        verify(!findChild(grid, "moreGroupActionsButton").enabled)
    }

    function test_orientationToggleWritesTheGroup() {
        const group = createTemporaryObject(groupComponent, testCase)
        const grid = makeGrid(group)
        const toggle = findChild(grid, "orientationButton")
        compare(toggle.text, "Landscape")
        mouseClick(toggle)
        compare(group.orientation, DeviceGroup.Landscape)
        compare(toggle.text, "Portrait")
        fuzzyCompare(grid.cellHeight, 126.1875, 1e-9)
        mouseClick(toggle)
        compare(group.orientation, DeviceGroup.Portrait)
        compare(toggle.text, "Landscape")
    }

    function test_groupControlNeedsADevice() {
        const group = createTemporaryObject(groupComponent, testCase)
        const grid = makeGrid(group)
        const toggle = findChild(grid, "groupControlButton")
        mouseClick(toggle)
        verify(!group.groupControlMode)
        compare(toggle.text, "Start Group Control")
    }

    function test_moreGroupActionsEntries() {
        const group = createTemporaryObject(groupComponent, testCase)
        const grid = makeGrid(group)
        mouseClick(findChild(grid, "moreGroupActionsButton"))
        const menu = findChild(grid, "moreGroupActionsMenu")
        tryVerify(() => menu.opened)
        const texts = []
        for (let i = 0; i < menu.count; ++i)
            texts.push(menu.itemAt(i).text)
        compare(texts, ["Screenshot", "Install APK", "Upload File", "Run AutoJS", "Stop AutoJS", "ADB Commands",
                        "Settings"])
        menu.close()
        tryVerify(() => !menu.visible)
    }

    function test_deviceViewSplitsItsCell_data() {
        return [
            { tag: "buttons", buttons: true, videoWidth: 171 },
            { tag: "no buttons", buttons: false, videoWidth: 210 }
        ]
    }

    function test_deviceViewSplitsItsCell(data) {
        // A cell of the default group: 210 x 324 (the grid's cell less its 10 pixel margins).
        const view = createTemporaryObject(viewComponent, testCase,
                                           { width: 210, height: 324, showControlButtons: data.buttons })
        const video = findChild(view, "videoItem")
        compare(video.width, data.videoWidth)
        compare(video.height, 304)
    }
}
