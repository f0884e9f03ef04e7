import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Shows a group action (install, upload, screenshot, AutoJS) phone by phone while it runs.
Dialog {
    id: dialog
    property GroupOperation operation: null

    title: operation ? operation.title : ""
    modal: false
    anchors.centerIn: Overlay.overlay
    width: 680
    height: 520
    padding: 14

    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }
    header: Label {
        text: dialog.title
        padding: 14
        color: ColorManager.textGreen
        font.pixelSize: Theme.fontTitle
        font.bold: true
    }

    contentItem: ColumnLayout {
        spacing: 8
        GroupOperationView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            operation: dialog.operation
        }
        KVButton {
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            textColor: ColorManager.textWhite
            onClicked: dialog.close()
        }
    }
}
