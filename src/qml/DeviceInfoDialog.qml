import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// What adb reports about one phone.
Dialog {
    id: dialog
    property Device device: null
    readonly property var info: device ? device.deviceInfo : null

    title: qsTr("Device Information")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 480
    padding: 14

    function valueOrUnknown(value) {
        return value && String(value).length > 0 ? String(value) : qsTr("Unknown")
    }

    function screenSize() {
        if (!info || info.screen_size.width <= 0 || info.screen_size.height <= 0)
            return qsTr("Unknown")
        return info.screen_size.width + " x " + info.screen_size.height
    }

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

    component SectionTitle: Text {
        Layout.columnSpan: 2
        Layout.topMargin: 6
        color: ColorManager.textGreen
        font.pixelSize: Theme.fontNormal
        font.bold: true
    }
    component Key: Text {
        color: ColorManager.textGray
        font.pixelSize: Theme.fontNormal
    }
    component Value: Text {
        Layout.fillWidth: true
        color: ColorManager.textWhite
        font.pixelSize: Theme.fontNormal
        elide: Text.ElideRight
    }

    contentItem: ColumnLayout {
        spacing: 10
        Text {
            Layout.fillWidth: true
            text: dialog.device && dialog.device.nickName.length > 0 ? dialog.device.nickName : qsTr("No Custom Name")
            color: ColorManager.textYellow
            font.pixelSize: Theme.fontTitle
            font.bold: true
            elide: Text.ElideRight
        }
        GridLayout {
            Layout.fillWidth: true
            columns: 2
            columnSpacing: 12
            rowSpacing: 4

            SectionTitle { text: qsTr("Basic Information") }
            Key { text: qsTr("Device Model:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.model : "") }
            Key { text: qsTr("Manufacturer:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.manufacturer : "") }
            Key { text: qsTr("Android Version:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.build_version : "") }
            Key { text: qsTr("Serial Number:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.hardward_serial : "") }

            SectionTitle { text: qsTr("Hardware Information") }
            Key { text: qsTr("Screen Size:") }
            Value { text: dialog.screenSize() }
            Key { text: qsTr("Memory Size:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.ddr_size : "") }

            SectionTitle { text: qsTr("Network Information") }
            Key { text: qsTr("Operator:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.gsm_operator_alpha : "") }
            Key { text: qsTr("Country / Region Code:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.country_code : "") }

            SectionTitle { text: qsTr("Connection Information") }
            Key { text: qsTr("ADB TCP Port:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.adb_tcp_port : "") }
            Key { text: qsTr("USB Configuration:") }
            Value { text: dialog.valueOrUnknown(dialog.info ? dialog.info.usb_config : "") }
        }
        KVButton {
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            textColor: ColorManager.textWhite
            onClicked: dialog.close()
        }
    }
}
