import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// The live table of one operation on many phones: a row per phone with its state, time and
// answer (click a row to see the whole answer), the summary, and Cancel / Retry failed / Copy report.
ColumnLayout {
    id: root
    property GroupOperation operation: null
    spacing: 6

    function stateColor(state) {
        switch (state) {
        case GroupOperation.Done: return ColorManager.textGreen
        case GroupOperation.Failed:
        case GroupOperation.TimedOut: return "#e05050"
        case GroupOperation.Running: return ColorManager.textWhite
        default: return ColorManager.textGray
        }
    }

    Text {
        objectName: "operationNotice"
        Layout.fillWidth: true
        visible: text.length > 0
        text: root.operation ? root.operation.notice : ""
        color: "#e0a040"
        font.pixelSize: Theme.fontNormal
        wrapMode: Text.Wrap
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        Text {
            objectName: "operationSummary"
            Layout.fillWidth: true
            text: root.operation ? root.operation.summary : ""
            color: ColorManager.textWhite
            font.pixelSize: Theme.fontNormal
            elide: Text.ElideRight
        }
        KVButton {
            objectName: "operationCancel"
            text: qsTr("Cancel")
            textColor: ColorManager.textWhite
            enabled: root.operation !== null && root.operation.running
            onClicked: root.operation.cancel()
        }
        KVButton {
            objectName: "operationRetry"
            text: qsTr("Retry failed")
            textColor: ColorManager.textWhite
            enabled: root.operation !== null && !root.operation.running && root.operation.failedCount > 0
            onClicked: root.operation.retryFailed()
        }
        KVButton {
            objectName: "operationCopyReport"
            text: qsTr("Copy report")
            textColor: ColorManager.textWhite
            enabled: root.operation !== null
            onClicked: root.operation.copyReport()
        }
    }

    ListView {
        id: rows
        objectName: "operationRows"
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        model: root.operation
        spacing: 2
        ScrollBar.vertical: ScrollBar {}

        delegate: Rectangle {
            id: rowItem
            required property int index
            required property int number
            required property string nickname
            required property string serial
            required property int rowState
            required property string stateText
            required property var elapsedMs
            required property string output
            property bool expanded: false

            width: ListView.view.width
            height: column.implicitHeight + 8
            color: index % 2 ? ColorManager.backgroundBlack : ColorManager.backgroundPureBlack
            radius: Theme.radius

            MouseArea {
                objectName: "operationRow" + rowItem.index
                anchors.fill: parent
                onClicked: rowItem.expanded = !rowItem.expanded
            }

            ColumnLayout {
                id: column
                anchors.fill: parent
                anchors.margins: 4
                spacing: 2
                RowLayout {
                    Layout.fillWidth: true
                    spacing: 8
                    Text {
                        text: "#" + rowItem.number
                        color: ColorManager.textGray
                        font.pixelSize: Theme.fontSmall
                        Layout.preferredWidth: 36
                    }
                    Text {
                        text: rowItem.nickname.length > 0 ? rowItem.nickname + "  " + rowItem.serial : rowItem.serial
                        color: ColorManager.textWhite
                        font.pixelSize: Theme.fontSmall
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                    Text {
                        text: rowItem.stateText
                        color: root.stateColor(rowItem.rowState)
                        font.pixelSize: Theme.fontSmall
                        font.bold: true
                        Layout.preferredWidth: 80
                    }
                    Text {
                        text: (Number(rowItem.elapsedMs) / 1000).toFixed(1) + " s"
                        color: ColorManager.textGray
                        font.pixelSize: Theme.fontSmall
                        horizontalAlignment: Text.AlignRight
                        Layout.preferredWidth: 60
                    }
                }
                Text {
                    objectName: "operationOutput" + rowItem.index
                    Layout.fillWidth: true
                    text: rowItem.output
                    visible: text.length > 0
                    color: ColorManager.textGray
                    font.family: "monospace"
                    font.pixelSize: Theme.fontSmall
                    wrapMode: Text.WrapAnywhere
                    maximumLineCount: rowItem.expanded ? 400 : 1
                    elide: rowItem.expanded ? Text.ElideNone : Text.ElideRight
                }
            }
        }
    }
}
