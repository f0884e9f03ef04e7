import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Asks before something is deleted; runs the action only on "Delete".
Dialog {
    id: confirm
    property string question
    property var action: null

    function ask(text, onConfirmed) {
        question = text
        action = onConfirmed
        open()
    }

    title: qsTr("Delete")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 400
    padding: 14
    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.error
        radius: Theme.radius
    }
    contentItem: ColumnLayout {
        spacing: 12
        Text {
            Layout.fillWidth: true
            text: confirm.question
            color: ColorManager.textWhite
            font.pixelSize: Theme.fontNormal
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            KVButton {
                objectName: "confirmCancel"
                text: qsTr("Cancel")
                textColor: ColorManager.textWhite
                onClicked: confirm.close()
            }
            KVButton {
                objectName: "confirmDelete"
                text: qsTr("Delete")
                textColor: ColorManager.textRed
                onClicked: {
                    const action = confirm.action
                    confirm.close()
                    if (action)
                        action()
                }
            }
        }
    }
    onClosed: action = null
}
