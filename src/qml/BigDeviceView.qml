import QtQuick
import QtQuick.Controls
import QtQuick.Window
import Korvel

// One phone in a window of its own, larger than its grid cell, kept above other windows.
Window {
    id: window
    property Device device: null
    property bool showControlButtons: true
    readonly property DeviceGroup group: device ? device.deviceGroup : null
    readonly property int videoWidth: group ? group.bigViewWidth : 960
    readonly property int videoHeight: Math.round(Theme.videoHeight(videoWidth, group ? group.orientation : DeviceGroup.Portrait))
    readonly property bool running: device !== null && device.running
    readonly property string deviceKey: device ? device.adbConnectionSerial : ""

    property real framesPerSecond: 0
    property int framesAtTick: 0
    property double lastTick: 0

    property string messageText
    property int messageKind: MessageKind.Info

    objectName: "bigDeviceView_" + deviceKey
    title: qsTr("Big Screen")
    flags: Qt.Window | Qt.WindowTitleHint | Qt.WindowSystemMenuHint | Qt.WindowCloseButtonHint
           | Qt.WindowMinimizeButtonHint | Qt.WindowStaysOnTopHint
    width: videoWidth + 20 + (showControlButtons ? Theme.controlButtonsWidth : 0)
    height: videoHeight + 55
    color: ColorManager.backgroundBlack
    palette.window: ColorManager.backgroundDarkGray
    palette.windowText: ColorManager.textWhite
    palette.base: ColorManager.backgroundBlack
    palette.text: ColorManager.textWhite
    palette.button: ColorManager.backgroundDarkGray
    palette.buttonText: ColorManager.textWhite
    palette.highlight: ColorManager.primaryDarkGreen

    function updateShowSize() {
        if (device && videoItem.width > 0 && videoItem.height > 0)
            device.setShowSize(Qt.size(videoItem.width, videoItem.height))
    }

    // The phone went away with its group: nothing is left to show.
    onDeviceChanged: {
        if (!device)
            window.close()
    }

    Connections {
        target: window.device
        function onRunningChanged() {
            window.framesPerSecond = 0
            window.updateShowSize()
        }
        function onDeviceMessage(message, kind, timeout) {
            window.messageText = message
            window.messageKind = kind
            messageTimer.interval = Math.max(1, timeout)
            messageTimer.restart()
            messageStrip.visible = true
        }
    }

    Timer {
        interval: 1000
        repeat: true
        running: window.running
        onTriggered: {
            const now = Date.now()
            const elapsed = now - window.lastTick
            const frames = window.device.videoFrames.framesPublished
            if (elapsed > 0)
                window.framesPerSecond = videoItem.shown ? (frames - window.framesAtTick) * 1000 / elapsed : 0
            window.framesAtTick = frames
            window.lastTick = now
        }
        onRunningChanged: {
            window.framesAtTick = window.device ? window.device.videoFrames.framesPublished : 0
            window.lastTick = Date.now()
        }
    }

    Rectangle {
        anchors.fill: parent
        color: ColorManager.backgroundDarkGray
        border.width: 2
        border.color: window.running ? ColorManager.primaryDarkGreen : ColorManager.borderDarkGray

        Item {
            id: header
            x: 10
            y: 8
            width: parent.width - 20
            height: 24

            Text {
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                text: window.device ? (window.device.indexInGroup + 1)
                                      + (window.device.nickName.length > 0 ? " - " + window.device.nickName : "")
                                    : ""
                color: ColorManager.textWhite
                font.pixelSize: Theme.fontNormal
                font.bold: true
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: window.running
                    objectName: "bigFpsText"
                    text: window.framesPerSecond.toFixed(1) + " FPS"
                    color: ColorManager.textGreen
                    font.pixelSize: Theme.fontSmall
                }
                HeaderButton {
                    text: window.running ? "■" : "▶"
                    toolTipText: window.running ? qsTr("Stop") : qsTr("Start")
                    textColor: window.running ? ColorManager.textRed : ColorManager.textGreen
                    font.pixelSize: 14
                    implicitWidth: 22
                    implicitHeight: 22
                    onClicked: window.running ? window.device.stopScrcpySession() : window.device.startScrcpySession()
                }
            }
        }

        Rectangle {
            id: videoFrame
            x: 10
            y: 37
            width: window.videoWidth
            height: window.videoHeight
            color: ColorManager.backgroundPureBlack

            YuvFboItem {
                id: videoItem
                objectName: "bigVideoItem"
                anchors.fill: parent
                source: window.device ? window.device.videoFrames : null
                visible: window.running
                onWidthChanged: window.updateShowSize()
                onHeightChanged: window.updateShowSize()
            }

            PhoneInputArea {
                anchors.fill: parent
                device: window.device
                visible: window.running
                enabled: !coordinates.visible
            }

            Text {
                anchors.centerIn: parent
                visible: !window.running
                text: qsTr("Click To Start")
                color: ColorManager.textGreen
                font.pixelSize: Theme.fontTitle
                MouseArea {
                    anchors.fill: parent
                    anchors.margins: -20
                    cursorShape: Qt.PointingHandCursor
                    onClicked: {
                        if (window.device && !window.device.running)
                            window.device.startScrcpySession()
                    }
                }
            }

            ScreenCoordinateDisplayer {
                id: coordinates
                anchors.fill: parent
                visible: false
            }

            MessageStrip {
                id: messageStrip
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                text: window.messageText
                kind: window.messageKind
                visible: false
                onDismissed: {
                    messageTimer.stop()
                    visible = false
                }
            }

            Timer {
                id: messageTimer
                onTriggered: messageStrip.visible = false
            }
        }

        ControlButtons {
            x: videoFrame.x + videoFrame.width + 4
            y: videoFrame.y
            width: Theme.controlButtonsWidth
            height: videoFrame.height
            visible: window.showControlButtons
            device: window.device
            onToggleScreenPosition: coordinates.visible = !coordinates.visible
        }
    }
}
