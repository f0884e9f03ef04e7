import QtQuick
import QtTest
import Korvel

// A phone cell before its session runs: its overlays, its status messages and its button column.
TestCase {
    id: testCase
    name: "DeviceView"
    when: windowShown
    visible: true
    width: 400
    height: 700

    function init() {
        failOnWarning(/.*/)
    }

    Component { id: deviceComponent; Device {} }
    Component { id: viewComponent; DeviceView { width: 210; height: 324 } }
    Component { id: buttonsComponent; ControlButtons { width: 34; height: 640 } }

    function makeView() {
        const device = createTemporaryObject(deviceComponent, testCase)
        const view = createTemporaryObject(viewComponent, testCase, { device: device })
        return { device: device, view: view }
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

    function test_messageStrip_data() {
        return [
            { tag: "error", type: "error", color: ColorManager.error },
            { tag: "success", type: "success", color: ColorManager.success },
            { tag: "info", type: "info", color: ColorManager.info }
        ]
    }

    function test_messageStrip(data) {
        const cell = makeView()
        const strip = findChild(cell.view, "messageStrip")
        verify(!strip.visible)
        cell.device.deviceMessage("Screenshot Saved", data.type, 150)
        verify(strip.visible)
        compare(strip.text, "Screenshot Saved")
        verify(Qt.colorEqual(strip.color, data.color), strip.color + " vs " + data.color)
        tryVerify(() => !strip.visible, 2000)
    }

    function test_newMessageReplacesAndRestartsTimer() {
        const cell = makeView()
        const strip = findChild(cell.view, "messageStrip")
        cell.device.deviceMessage("Uploading File", "info", 300)
        wait(200)
        cell.device.deviceMessage("File upload failed", "error", 300)
        wait(200)
        // The first message's time is over, but the second one restarted the timer.
        verify(strip.visible)
        compare(strip.text, "File upload failed")
        tryVerify(() => !strip.visible, 2000)
    }

    function test_closeButtonHidesMessage() {
        const cell = makeView()
        const strip = findChild(cell.view, "messageStrip")
        cell.device.deviceMessage("Not Connected", "error", 100000)
        verify(strip.visible)
        mouseClick(findChild(strip, "messageClose"))
        verify(!strip.visible)
    }

    function test_controlButtonsInOrder() {
        const column = createTemporaryObject(buttonsComponent, testCase)
        const home = findChild(column, "homeButton")
        const tips = []
        for (const child of Array.from(home.parent.children)) {
            if (child.tip !== undefined)
                tips.push(child.tip)
        }
        compare(tips, ["Home", "Task List", "Back", "Swipe Up", "Swipe Down", "Swipe Left", "Swipe Right",
                       "Rotate Screen", "Screenshot", "Record Video", "Select Phrase", "Volume Up", "Volume Down",
                       "Upload File", "Key Mapping", "Screen Position", "Install APK", "Run AutoJS",
                       "Run ADB Command", "Screen On", "Screen Off", "Audio Disabled", "Reboot", "Shutdown"])
        // Nothing is bound: every button is inert.
        for (const child of Array.from(home.parent.children)) {
            if (child.tip !== undefined)
                verify(!child.enabled, child.tip)
        }
        compare(home.height, 24)
    }

    function test_controlButtonsFollowTheDevice() {
        const device = createTemporaryObject(deviceComponent, testCase)
        const column = createTemporaryObject(buttonsComponent, testCase, { device: device })
        const home = findChild(column, "homeButton")
        verify(home.enabled)
        const audio = Array.from(home.parent.children).find(child => child.tip === "Audio Disabled")
        verify(audio)
        // Audio is switched on the phone; the button then reads the phone's new state.
        mouseClick(audio)
        compare(device.isAudioEnabled, true)
        compare(audio.tip, "Audio Enabled")
        // Recording is offered on every bound phone; it reads the phone's own recorder.
        const record = Array.from(home.parent.children).find(child => child.tip === "Record Video")
        verify(record.enabled)
        compare(device.videoRecorder.isRecording, false)
    }

    function test_screenPositionOverlay() {
        const device = createTemporaryObject(deviceComponent, testCase)
        // Tall enough for the whole button column to be on screen.
        const cell = { view: createTemporaryObject(viewComponent, testCase, { device: device, height: 680 }) }
        const column = findChild(cell.view, "homeButton").parent
        const toggle = Array.from(column.children).find(child => child.tip === "Screen Position")
        mouseClick(toggle)
        const input = findChild(cell.view, "inputArea")
        verify(!input.enabled)
        mouseClick(toggle)
        verify(input.enabled)
    }
}
