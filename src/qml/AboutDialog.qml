import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

Dialog {
    id: dialog
    title: qsTr("About APP")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 420

    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 12

        Image {
            Layout.alignment: Qt.AlignHCenter
            source: "qrc:/Korvel/src/icons/korvel_logo.png"
            sourceSize: Qt.size(72, 72)
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: AppConfig.appInfo.appName
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontTitle
            font.bold: true
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Version") + ": " + AppConfig.currentVersion
            color: ColorManager.textWhite
            font.pixelSize: Theme.fontNormal
        }
        Text {
            Layout.fillWidth: true
            text: qsTr("Visit our website for more information and instructions.")
            color: ColorManager.textGray
            font.pixelSize: Theme.fontSmall
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
        }
        KVButton {
            objectName: "aboutClose"
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            textColor: ColorManager.textWhite
            onClicked: dialog.close()
        }
    }
}
