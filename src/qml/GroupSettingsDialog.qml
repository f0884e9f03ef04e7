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

    component SliderRow: RowLayout {
        id: row
        property string label
        property string suffix
        property string note
        property real value: 0
        property alias from: slider.from
        property alias to: slider.to
        property alias stepSize: slider.stepSize
        signal edited(real value)

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
            value: row.value
            // Only the user's own moves are written back, never a clamp of a stored value.
            onMoved: {
                if (value !== row.value)
                    row.edited(value)
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
        property bool checked: false
        signal edited(bool checked)

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
                    switchRow.edited(checked)
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
                    from: 0; to: 20; stepSize: 1
                    suffix: qsTr(" s")
                    value: dialog.group ? dialog.group.clickDelaySeconds : 0
                    onEdited: value => dialog.group.clickDelaySeconds = value
                }
                SwitchRow {
                    label: qsTr("Show Control Buttons:")
                    checked: dialog.group ? dialog.group.showControlButtons : true
                    onEdited: checked => dialog.group.showControlButtons = checked
                }
                SwitchRow {
                    label: qsTr("Enable Sound Output:")
                    note: qsTr("Android 11 or later") + ", " + qsTr("Need Reconnect")
                    checked: dialog.group ? dialog.group.enableAudio : false
                    onEdited: checked => dialog.group.enableAudio = checked
                }

                SectionTitle { text: qsTr("Small Window Settings") }
                SliderRow {
                    objectName: "cellWidthSlider"
                    label: qsTr("Width:")
                    from: 220; to: 720; stepSize: 10
                    suffix: qsTr(" px")
                    value: dialog.group ? dialog.group.cellWidth : 220
                    onEdited: value => dialog.group.cellWidth = value
                }
                SliderRow {
                    label: qsTr("Resolution:")
                    note: qsTr("Need Reconnect")
                    from: 220; to: 2400; stepSize: 10
                    suffix: qsTr(" px")
                    value: dialog.group ? dialog.group.maxSize : 720
                    onEdited: value => dialog.group.maxSize = value
                }
                SliderRow {
                    label: qsTr("Frame Rate:")
                    note: qsTr("Need Reconnect")
                    from: 5; to: 100; stepSize: 1
                    suffix: qsTr(" fps")
                    value: dialog.group ? dialog.group.maxFPS : 30
                    onEdited: value => dialog.group.maxFPS = value
                }
                SliderRow {
                    objectName: "bitRateSlider"
                    label: qsTr("Bit Rate:")
                    note: qsTr("Need Reconnect")
                    from: 2; to: 8; stepSize: 1
                    suffix: qsTr(" Mbps")
                    value: dialog.group ? dialog.group.bitRate / 1000000 : 4
                    onEdited: value => dialog.group.bitRate = value * 1000000
                }

                SectionTitle { text: qsTr("Big Window Settings") }
                SliderRow {
                    label: qsTr("Big View Width:")
                    from: 400; to: 1280; stepSize: 10
                    suffix: qsTr(" px")
                    value: dialog.group ? dialog.group.bigViewWidth : 960
                    onEdited: value => dialog.group.bigViewWidth = value
                }
                SliderRow {
                    label: qsTr("Resolution:")
                    note: qsTr("Need Reconnect")
                    from: 220; to: 2400; stepSize: 10
                    suffix: qsTr(" px")
                    value: dialog.group ? dialog.group.maxSizeBigView : 720
                    onEdited: value => dialog.group.maxSizeBigView = value
                }
                SliderRow {
                    label: qsTr("Frame Rate:")
                    note: qsTr("Need Reconnect")
                    from: 5; to: 100; stepSize: 1
                    suffix: qsTr(" fps")
                    value: dialog.group ? dialog.group.maxFPSBigView : 30
                    onEdited: value => dialog.group.maxFPSBigView = value
                }
                SliderRow {
                    label: qsTr("Bit Rate:")
                    note: qsTr("Need Reconnect")
                    from: 2; to: 8; stepSize: 1
                    suffix: qsTr(" Mbps")
                    value: dialog.group ? dialog.group.bitRateBigView / 1000000 : 4
                    onEdited: value => dialog.group.bitRateBigView = value * 1000000
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
