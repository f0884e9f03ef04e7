import QtQuick
import QtTest
import Korvel

// The device grid follows its group's settings, and its tool bar acts on the group.
KorvelTestCase {
    id: testCase
    name: "GridLayout"
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
}
