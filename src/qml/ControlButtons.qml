import QtQuick
import QtQuick.Controls
import Korvel

// The button column beside one phone's picture. Every button acts on the bound device only.
Flickable {
    id: root
    property Device device: null
    property bool phraseSelectionAvailable: true
    property bool keyMappingAvailable: true

    signal openPhraseSelectionDialog()
    signal openKeyMapProfilePicker()
    signal toggleScreenPosition()

    readonly property bool recording: device !== null && device.videoRecorder !== undefined
                                      && device.videoRecorder !== null && device.videoRecorder.isRecording === true
    readonly property bool autojsRunning: device !== null && device.actions.autojs !== null && device.actions.autojs.isRunning
    readonly property var keyMappingProfile: device !== null && device.currentKeyMappingProfile !== undefined
                                             ? device.currentKeyMappingProfile : null

    implicitWidth: Theme.controlButtonsWidth
    contentHeight: column.height
    clip: true
    flickableDirection: Flickable.VerticalFlick
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ScrollBar {
        width: 4
        policy: root.contentHeight > root.height ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded
    }

    component ControlButton: AbstractButton {
        id: button
        property string tip
        property string iconName
        property string label
        property color tint: ColorManager.textWhite

        width: root.width - 6
        height: Theme.controlButtonHeight
        hoverEnabled: true
        enabled: root.device !== null
        focusPolicy: Qt.NoFocus
        Accessible.name: tip

        background: Rectangle {
            radius: Theme.radius
            color: button.down ? ColorManager.backgroundBlackGreen
                               : button.hovered ? ColorManager.borderDarkGray : ColorManager.backgroundDarkGray
        }
        contentItem: Item {
            Icon {
                anchors.centerIn: parent
                width: 16
                height: 16
                visible: button.label.length === 0
                name: button.iconName
                color: button.enabled ? button.tint : ColorManager.textGray
            }
            Text {
                anchors.centerIn: parent
                visible: button.label.length > 0
                text: button.label
                color: button.enabled ? button.tint : ColorManager.textGray
                font.pixelSize: 9
                font.bold: true
            }
        }
        KVToolTip {
            text: button.tip
            visible: button.hovered
        }
    }

    FilePicker { id: picker }

    Column {
        id: column
        x: 2
        spacing: 2

        ControlButton { objectName: "homeButton"; tip: qsTr("Home"); iconName: "home"; onClicked: root.device.actions.home() }
        ControlButton { tip: qsTr("Task List"); iconName: "tasks"; onClicked: root.device.actions.showTaskList() }
        ControlButton { tip: qsTr("Back"); iconName: "back"; onClicked: root.device.actions.back() }
        ControlButton { tip: qsTr("Swipe Up"); iconName: "up"; onClicked: root.device.actions.swipeUp() }
        ControlButton { tip: qsTr("Swipe Down"); iconName: "down"; onClicked: root.device.actions.swipeDown() }
        ControlButton { tip: qsTr("Swipe Left"); iconName: "left"; onClicked: root.device.actions.swipeLeft() }
        ControlButton { tip: qsTr("Swipe Right"); iconName: "right"; onClicked: root.device.actions.swipeRight() }
        ControlButton { tip: qsTr("Rotate Screen"); iconName: "rotate"; onClicked: root.device.actions.rotateScreen() }
        ControlButton {
            tip: qsTr("Screenshot")
            iconName: root.device && root.device.isScreenShotting ? "hourglass" : "camera"
            tint: root.device && root.device.isScreenShotting ? ColorManager.textRed : ColorManager.textWhite
            onClicked: root.device.takeScreenshot()
        }
        ControlButton {
            tip: root.recording ? qsTr("Stop Recording") : qsTr("Record Video")
            iconName: root.recording ? "stop" : "record"
            tint: root.recording ? ColorManager.textRed : ColorManager.textWhite
            enabled: root.device !== null && root.device.videoRecorder !== undefined
            onClicked: root.recording ? root.device.stopRecord() : root.device.startRecord()
        }
        ControlButton {
            tip: qsTr("Select Phrase")
            iconName: "phrase"
            enabled: root.device !== null && root.phraseSelectionAvailable
            onClicked: root.openPhraseSelectionDialog()
        }
        ControlButton { tip: qsTr("Volume Up"); iconName: "volumeUp"; onClicked: root.device.actions.volumeUp() }
        ControlButton { tip: qsTr("Volume Down"); iconName: "volumeDown"; onClicked: root.device.actions.volumeDown() }
        ControlButton {
            tip: qsTr("Upload File")
            iconName: "upload"
            onClicked: {
                const device = root.device
                picker.pick(qsTr("Select File"), [qsTr("All files (*.*)")], path => {
                    if (device)
                        device.actions.uploadFile(path)
                })
            }
        }
        ControlButton {
            tip: root.keyMappingProfile ? qsTr("KeyMapping: %1").arg(root.keyMappingProfile.name) : qsTr("Key Mapping")
            iconName: "keyboard"
            tint: root.keyMappingProfile ? ColorManager.primaryGreen : ColorManager.textWhite
            enabled: root.device !== null && root.keyMappingAvailable
            onClicked: root.openKeyMapProfilePicker()
        }
        ControlButton {
            tip: qsTr("Screen Position")
            iconName: "crosshair"
            onClicked: root.toggleScreenPosition()
        }
        ControlButton {
            tip: qsTr("Install APK")
            label: qsTr("APK")
            onClicked: {
                const device = root.device
                picker.pick(qsTr("Select APK File"), [qsTr("APK files (*.apk)")], path => {
                    if (device)
                        device.actions.installAPK(path)
                })
            }
        }
        ControlButton {
            tip: root.autojsRunning ? qsTr("Stop AutoJS") : qsTr("Run AutoJS")
            label: "JS"
            tint: root.autojsRunning ? ColorManager.textRed : ColorManager.textWhite
            onClicked: {
                const device = root.device
                if (root.autojsRunning) {
                    device.actions.stopAutojs()
                    return
                }
                picker.pick(qsTr("Select AutoJS Script"), [qsTr("autojs files (*.js)")], path => {
                    if (device)
                        device.actions.runAutojs(path)
                })
            }
        }
        ControlButton {
            tip: qsTr("Run ADB Command")
            label: qsTr("ADB")
            onClicked: adbDialogLoader.active = true
        }
        ControlButton { tip: qsTr("Screen On"); iconName: "sun"; onClicked: root.device.actions.wakeUp() }
        ControlButton { tip: qsTr("Screen Off"); iconName: "moon"; onClicked: root.device.actions.sleep() }
        ControlButton {
            tip: root.device && root.device.isAudioEnabled ? qsTr("Audio Enabled") : qsTr("Audio Disabled")
            iconName: root.device && root.device.isAudioEnabled ? "soundOn" : "soundOff"
            onClicked: root.device.setEnableAudio(!root.device.isAudioEnabled)
        }
        ControlButton { tip: qsTr("Reboot"); iconName: "reboot"; onClicked: root.device.actions.reboot() }
        ControlButton {
            tip: qsTr("Shutdown")
            iconName: "power"
            tint: ColorManager.textRed
            onClicked: root.device.actions.shutdown()
        }
    }

    onOpenPhraseSelectionDialog: phraseDialogLoader.active = true
    onOpenKeyMapProfilePicker: profilePickerLoader.active = true

    // The phrase reaches this phone; under group control the host's paste is replayed on the group.
    Loader {
        id: phraseDialogLoader
        active: false
        sourceComponent: PhraseSelectionDialog {
            objectName: "phraseSelectionDialog"
            onPhraseSelected: text => {
                if (root.device && root.device.controller)
                    root.device.controller.actionInputText(text)
            }
            onClosed: phraseDialogLoader.active = false
            Component.onCompleted: open()
        }
    }
    Loader {
        id: profilePickerLoader
        active: false
        sourceComponent: KeyMapProfilePicker {
            objectName: "keyMapProfilePicker"
            device: root.device
            onClosed: profilePickerLoader.active = false
            Component.onCompleted: open()
        }
    }

    Loader {
        id: adbDialogLoader
        active: false
        sourceComponent: ADBCommandDialog {
            objectName: "adbCommandDialog"
            device: root.device
            onClosed: adbDialogLoader.active = false
            Component.onCompleted: open()
        }
    }
}
