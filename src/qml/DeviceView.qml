import QtQuick
import QtQuick.Controls
import Korvel

// One cell of the device grid: the phone's header, its live picture and its button column.
Item {
    id: root
    property Device device: null
    property bool showControlButtons: true
    readonly property string deviceKey: device ? device.adbConnectionSerial : ""
    readonly property bool running: device !== null && device.running
    readonly property bool onBigScreen: device !== null && device.isBigView
    readonly property real videoWidth: showControlButtons ? width - Theme.controlButtonsWidth - 5 : width
    readonly property real videoHeight: height - headerHeight
    readonly property int headerHeight: 20

    property real framesPerSecond: 0
    property int framesSinceTick: 0
    property double lastTick: 0

    property string messageText
    property string messageType: "info"

    signal bigViewRequested(Device device)

    objectName: "deviceView_" + deviceKey

    function title() {
        if (!device)
            return ""
        const nickName = device.nickName
        return (device.indexInGroup + 1) + (nickName.length > 0 ? " - " + nickName : "")
    }

    function resetPicture() {
        videoItem.clearFrame()
        framesPerSecond = 0
        framesSinceTick = 0
        lastTick = Date.now()
    }

    function showMessage(message, type, timeout) {
        messageText = message
        messageType = type
        messageTimer.interval = Math.max(1, timeout)
        messageTimer.restart()
        messageStrip.visible = true
    }

    Component.onCompleted: console.log("DeviceView created for device:", deviceKey)
    Component.onDestruction: console.log("DeviceView destroyed for device:", deviceKey)

    // A grid may park a cell and hand it to another phone later.
    function pooled() {
        console.log("DeviceView destroyed for device:", deviceKey)
        messageTimer.stop()
        messageStrip.visible = false
        coordinates.visible = false
    }
    function reused() {
        console.log("DeviceView created for device:", deviceKey)
        resetPicture()
    }

    Connections {
        target: root.device
        function onYuvFrameReady(width, height, yData, yStride, uData, uStride, vData, vStride) {
            if (root.device.isBigView || !videoItem.visible)
                return
            videoItem.present(width, height, yData, yStride, uData, uStride, vData, vStride)
            root.device.setShowSize(Qt.size(videoItem.width, videoItem.height))
            root.framesSinceTick++
        }
        function onRunningChanged() {
            if (!root.device.running)
                root.resetPicture()
        }
        function onIsBigViewChanged() {
            root.resetPicture()
        }
        function onDeviceMessage(message, type, timeout) {
            root.showMessage(message, type, timeout)
        }
    }

    Timer {
        interval: 1000
        repeat: true
        running: root.running && !root.onBigScreen
        onTriggered: {
            const now = Date.now()
            const elapsed = now - root.lastTick
            if (elapsed > 0)
                root.framesPerSecond = root.framesSinceTick * 1000 / elapsed
            root.framesSinceTick = 0
            root.lastTick = now
        }
        onRunningChanged: {
            root.framesSinceTick = 0
            root.lastTick = Date.now()
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: -3
        radius: Theme.radius
        color: ColorManager.backgroundDarkGray
        border.color: root.device && root.device.isHostDevice ? ColorManager.textRed
                                                                : root.running ? ColorManager.borderDarkGreen
                                                                               : ColorManager.borderDarkGray
    }

    // Header: position and nickname, host flag, big view, start/stop, remove.
    Item {
        id: header
        width: root.width
        height: root.headerHeight

        Row {
            anchors.left: parent.left
            anchors.right: buttons.left
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4
            clip: true
            Text {
                objectName: "deviceTitle"
                text: root.title()
                color: ColorManager.textWhite
                font.pixelSize: Theme.fontSmall
                font.bold: true
                elide: Text.ElideRight
                width: Math.min(implicitWidth, header.width - buttons.width - 24)
            }
            Icon {
                objectName: "hostFlag"
                visible: root.device !== null && root.device.isHostDevice
                width: 14
                height: 14
                name: "flag"
                color: ColorManager.textRed
            }
        }

        Row {
            id: buttons
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2
            HeaderButton {
                objectName: "bigViewButton"
                visible: !root.onBigScreen
                text: "⛶"
                iconName: "expand"
                textColor: ColorManager.textYellow
                toolTipText: qsTr("Big Screen")
                onClicked: {
                    root.device.setIsBigView(true)
                    root.bigViewRequested(root.device)
                }
            }
            HeaderButton {
                objectName: "startStopButton"
                text: root.running ? "■" : "▶"
                toolTipText: root.running ? qsTr("Stop") : qsTr("Start")
                textColor: root.running ? ColorManager.textRed : ColorManager.textGreen
                onClicked: root.running ? root.device.stopScrcpySession() : root.device.startScrcpySession()
            }
            HeaderButton {
                objectName: "removeButton"
                text: "X"
                toolTipText: qsTr("Remove Device")
                textColor: ColorManager.textRed
                onClicked: root.device.removeFromDeviceGroup()
            }
        }
    }

    Rectangle {
        id: videoFrame
        y: root.headerHeight
        width: root.videoWidth
        height: root.videoHeight
        color: ColorManager.backgroundPureBlack

        YuvFboItem {
            id: videoItem
            objectName: "videoItem"
            anchors.fill: parent
            visible: !root.onBigScreen
            Component.onCompleted: console.log("YuvFboItem created for device:", root.deviceKey)
            Component.onDestruction: console.log("YuvFboItem destroyed for device:", root.deviceKey)
        }

        PhoneInputArea {
            id: inputArea
            objectName: "inputArea"
            anchors.fill: parent
            device: root.device
            logButtons: true
            visible: root.running && !root.onBigScreen
            enabled: !coordinates.visible
        }

        MouseArea {
            objectName: "clickToStart"
            anchors.fill: parent
            visible: root.device !== null && !root.running && !root.onBigScreen
            cursorShape: Qt.PointingHandCursor
            onClicked: {
                if (!root.device.running)
                    root.device.startScrcpySession()
            }
            Text {
                anchors.centerIn: parent
                text: qsTr("Click To Start")
                color: ColorManager.textGreen
                font.pixelSize: Theme.fontNormal
            }
        }

        Text {
            objectName: "onBigScreenText"
            anchors.centerIn: parent
            visible: root.onBigScreen
            text: qsTr("On Big Screen")
            color: ColorManager.textYellow
            font.pixelSize: Theme.fontNormal
        }

        Text {
            objectName: "fpsText"
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 4
            visible: root.running && !root.onBigScreen
            text: root.framesPerSecond.toFixed(1) + " FPS"
            color: ColorManager.textGreen
            font.pixelSize: 10
            style: Text.Outline
            styleColor: ColorManager.backgroundPureBlack
        }

        ScreenCoordinateDisplayer {
            id: coordinates
            anchors.fill: parent
            visible: false
        }

        MessageStrip {
            id: messageStrip
            objectName: "messageStrip"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            text: root.messageText
            type: root.messageType
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
        x: root.videoWidth + 5
        y: root.headerHeight
        width: Theme.controlButtonsWidth
        height: root.videoHeight
        visible: root.showControlButtons
        device: root.device
        onToggleScreenPosition: coordinates.visible = !coordinates.visible
    }
}
