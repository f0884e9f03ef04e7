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
    // False while a scrolling grid holds the cell out of sight: its phone then stops decoding.
    property bool inViewport: true

    property real framesPerSecond: 0
    property int framesAtTick: 0
    property double lastTick: 0

    property string messageText
    property int messageKind: MessageKind.Info

    signal bigViewRequested(Device device)

    objectName: "deviceView_" + deviceKey

    function title() {
        if (!device)
            return ""
        const nickName = device.nickName
        return (device.indexInGroup + 1) + (nickName.length > 0 ? " - " + nickName : "")
    }

    function resetPicture() {
        framesPerSecond = 0
        framesAtTick = device ? device.videoFrames.framesPublished : 0
        lastTick = Date.now()
    }

    function reportShowSize() {
        if (device && !device.isBigView && videoItem.width > 0 && videoItem.height > 0)
            device.setShowSize(Qt.size(videoItem.width, videoItem.height))
    }
    onDeviceChanged: reportShowSize()

    function showMessage(message, kind, timeout) {
        messageText = message
        messageKind = kind
        messageTimer.interval = Math.max(1, timeout)
        messageTimer.restart()
        messageStrip.visible = true
    }

    Connections {
        target: root.device
        function onRunningChanged() {
            if (!root.device.running)
                root.resetPicture()
        }
        function onIsBigViewChanged() {
            root.resetPicture()
            root.reportShowSize()
        }
        function onDeviceMessage(message, kind, timeout) {
            root.showMessage(message, kind, timeout)
        }
    }

    Timer {
        interval: 1000
        repeat: true
        running: root.running && !root.onBigScreen
        onTriggered: {
            const now = Date.now()
            const elapsed = now - root.lastTick
            const frames = root.device.videoFrames.framesPublished
            if (elapsed > 0)
                root.framesPerSecond = videoItem.shown ? (frames - root.framesAtTick) * 1000 / elapsed : 0
            root.framesAtTick = frames
            root.lastTick = now
        }
        onRunningChanged: root.resetPicture()
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
            source: root.device ? root.device.videoFrames : null
            inViewport: root.inViewport
            visible: root.running && !root.onBigScreen
            onWidthChanged: root.reportShowSize()
            onHeightChanged: root.reportShowSize()
        }

        Text {
            objectName: "startingText"
            anchors.centerIn: parent
            visible: root.device !== null && root.device.starting && !root.onBigScreen
            text: qsTr("Starting…")
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontNormal
        }

        PhoneInputArea {
            id: inputArea
            objectName: "inputArea"
            anchors.fill: parent
            device: root.device
            visible: root.running && !root.onBigScreen
            enabled: !coordinates.visible
        }

        Column {
            objectName: "offlineText"
            anchors.centerIn: parent
            visible: root.device !== null && root.device.offline && !root.onBigScreen
            spacing: 2
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                // A phone the user wants running starts by itself once it is back.
                text: root.device && root.device.wanted ? qsTr("Waiting for the phone…") : qsTr("Offline")
                color: ColorManager.textRed
                font.pixelSize: Theme.fontNormal
                font.bold: true
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: root.device && root.device.offline
                      ? qsTr("since %1").arg(Qt.formatTime(root.device.offlineSince, "hh:mm:ss")) : ""
                color: ColorManager.textGray
                font.pixelSize: Theme.fontSmall
            }
        }

        MouseArea {
            objectName: "clickToStart"
            anchors.fill: parent
            visible: root.device !== null && !root.running && !root.onBigScreen && !root.device.offline
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
            kind: root.messageKind
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
