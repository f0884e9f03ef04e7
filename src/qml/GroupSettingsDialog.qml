import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Edits the group's settings live: each change is assigned to the group at once, which saves
// and applies it; "Save" only closes.
Dialog {
    id: dialog
    property DeviceGroup group: null

    title: qsTr("Group Settings")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 560
    height: Math.min(720, parent ? parent.height - 40 : 720)
    padding: 14

    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }
    header: Label {
        text: dialog.title + (dialog.group ? " - " + dialog.group.name : "")
        padding: 14
        color: ColorManager.textGreen
        font.pixelSize: Theme.fontTitle
        font.bold: true
        elide: Text.ElideRight
    }

    component SectionTitle: Text {
        color: ColorManager.textGreen
        font.pixelSize: Theme.fontNormal
        font.bold: true
        Layout.topMargin: 8
    }

    // A setting of the group, by its property name; the group gives its range. The slider counts
    // in units of the setting (a megabit of bits per second).
    component SliderRow: RowLayout {
        id: row
        property string label
        property string suffix
        property string note
        property string key
        property real unit: 1
        readonly property var range: dialog.group ? dialog.group.settingRange(key) : ({ from: 0, to: 0 })
        readonly property real value: dialog.group ? dialog.group[key] / unit : 0
        property alias stepSize: slider.stepSize

        Layout.fillWidth: true
        spacing: 8
        Text {
            text: row.label
            color: ColorManager.textWhite
            font.pixelSize: Theme.fontNormal
            Layout.preferredWidth: 150
            elide: Text.ElideRight
        }
        Slider {
            id: slider
            Accessible.name: row.label
            Layout.fillWidth: true
            snapMode: Slider.SnapAlways
            from: row.range.from / row.unit
            to: row.range.to / row.unit
            value: row.value
            // Only the user's own moves are written back, never a clamp of a stored value.
            onMoved: {
                if (value !== row.value)
                    dialog.group[row.key] = value * row.unit
            }
        }
        Text {
            text: Math.round(slider.value * 10) / 10 + row.suffix
            color: ColorManager.textGreen
            font.pixelSize: Theme.fontNormal
            horizontalAlignment: Text.AlignRight
            Layout.preferredWidth: 80
        }
        // Kept even when empty, so that every slider has the same length.
        Text {
            text: row.note
            color: ColorManager.textYellow
            font.pixelSize: 11
            Layout.preferredWidth: 90
            wrapMode: Text.Wrap
        }
    }

    component SwitchRow: RowLayout {
        id: switchRow
        property string label
        property string note
        property string key
        readonly property bool checked: dialog.group ? dialog.group[key] : false

        Layout.fillWidth: true
        spacing: 8
        Text {
            text: switchRow.label
            color: ColorManager.textWhite
            font.pixelSize: Theme.fontNormal
            Layout.preferredWidth: 150
        }
        Switch {
            id: toggle
            Accessible.name: switchRow.label
            checked: switchRow.checked
            onToggled: {
                if (checked !== switchRow.checked)
                    dialog.group[switchRow.key] = checked
            }
        }
        Text {
            visible: switchRow.note.length > 0
            text: switchRow.note
            color: ColorManager.textYellow
            font.pixelSize: 11
            Layout.fillWidth: true
            wrapMode: Text.Wrap
        }
        Item { Layout.fillWidth: switchRow.note.length === 0 }
    }

    contentItem: ColumnLayout {
        spacing: 6
        enabled: dialog.group !== null

        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentWidth: availableWidth
            clip: true

            ColumnLayout {
                width: parent.width
                spacing: 6

                SectionTitle { text: qsTr("General Settings") }
                SliderRow {
                    objectName: "clickDelaySlider"
                    label: qsTr("Group Control Delay:")
                    key: "clickDelaySeconds"; stepSize: 1
                    suffix: qsTr(" s")
                }
                SwitchRow {
                    label: qsTr("Show Control Buttons:")
                    key: "showControlButtons"
                }
                SwitchRow {
                    label: qsTr("Enable Sound Output:")
                    note: qsTr("Android 11 or later") + ", " + qsTr("Need Reconnect")
                    key: "enableAudio"
                }

                SectionTitle { text: qsTr("Small Window Settings") }
                SliderRow {
                    objectName: "cellWidthSlider"
                    label: qsTr("Width:")
                    key: "cellWidth"; stepSize: 10
                    suffix: qsTr(" px")
                }
                SliderRow {
                    label: qsTr("Resolution:")
                    note: qsTr("Need Reconnect")
                    key: "maxSize"; stepSize: 10
                    suffix: qsTr(" px")
                }
                SliderRow {
                    label: qsTr("Frame Rate:")
                    note: qsTr("Need Reconnect")
                    key: "maxFPS"; stepSize: 1
                    suffix: qsTr(" fps")
                }
                SliderRow {
                    objectName: "bitRateSlider"
                    label: qsTr("Bit Rate:")
                    note: qsTr("Need Reconnect")
                    key: "bitRate"; unit: 1000000; stepSize: 1
                    suffix: qsTr(" Mbps")
                }

                SectionTitle { text: qsTr("Big Window Settings") }
                SliderRow {
                    label: qsTr("Big View Width:")
                    key: "bigViewWidth"; stepSize: 10
                    suffix: qsTr(" px")
                }
                SliderRow {
                    label: qsTr("Resolution:")
                    note: qsTr("Need Reconnect")
                    key: "maxSizeBigView"; stepSize: 10
                    suffix: qsTr(" px")
                }
                SliderRow {
                    label: qsTr("Frame Rate:")
                    note: qsTr("Need Reconnect")
                    key: "maxFPSBigView"; stepSize: 1
                    suffix: qsTr(" fps")
                }
                SliderRow {
                    label: qsTr("Bit Rate:")
                    note: qsTr("Need Reconnect")
                    key: "bitRateBigView"; unit: 1000000; stepSize: 1
                    suffix: qsTr(" Mbps")
                }
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            KVButton {
                objectName: "groupSettingsSave"
                text: qsTr("Save")
                onClicked: dialog.close()
            }
        }
    }
}
