import QtQuick
import QtTest
import Korvel

// A phone cell before its session runs: its overlays, its status messages and its button column.
KorvelTestCase {
    id: testCase
    name: "DeviceView"
    width: 400
    height: 700

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
        cell.device.deviceMessage("Uploading File", "info", 1000)
        control.device.deviceMessage("Uploading File", "info", 500)
        tryVerify(() => !controlStrip.visible, 5000)
        cell.device.deviceMessage("File upload failed", "error", 1000)
        // Gone at least 1100 ms after the first message: its time is over, the second one's is not.
        control.device.deviceMessage("Uploading File", "info", 600)
        tryVerify(() => !controlStrip.visible, 5000)
        verify(strip.visible)
        compare(strip.text, "File upload failed")
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
