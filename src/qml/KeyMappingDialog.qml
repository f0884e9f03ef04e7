import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Edits key-mapping profiles: keys are captured from the keyboard, points are placed on a live
// picture of one of the group's phones.
Dialog {
    id: dialog
    property DeviceGroup group: null
    readonly property KeyMappingProfile profile: profileCombo.currentIndex >= 0
                                                 ? KeyMapping.getProfile(profileCombo.currentText) : null
    // Followed only while the dialog is open: a closed one would refilter the whole group and reset
    // its phone list at every start and stop of a rack's phones.
    readonly property var runningDevices: {
        const devices = group && visible ? group.devicesForRepeater : []
        return devices.filter(device => device && device.running)
    }
    readonly property Device previewDevice: runningDevices.length > 0
                                            ? runningDevices[Math.min(Math.max(0, phoneCombo.currentIndex),
                                                                      runningDevices.length - 1)] : null

    // The editor: -1 adds, otherwise the index of the entry being changed.
    property bool editing: false
    property int editIndex: -1
    property int keyCode: 0
    property int modifiers: 0
    property string keyDisplay: ""
    property int type: KeyMappingType.Tap
    property real pointX: 0.5
    property real pointY: 0.5
    property int count: 1
    property real startX: 0.2
    property real startY: 0.5
    property real endX: 0.8
    property real endY: 0.5
    property int duration: 200
    property bool placingEnd: false
    property string problem: ""

    title: qsTr("Key Mapping Settings")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 1200
    height: 600
    padding: 14

    onAboutToShow: {
        const current = KeyMapping.currentProfile ? KeyMapping.profileNames.indexOf(KeyMapping.currentProfile.name) : -1
        profileCombo.currentIndex = current >= 0 ? current : (KeyMapping.profileNames.length > 0 ? 0 : -1)
        editing = false
        creating = false
    }

    property bool creating: false

    function startEdit(index) {
        problem = ""
        editIndex = index
        const entry = index >= 0 ? profile.mappings[index] : null
        keyCode = entry ? entry.keyCode : 0
        modifiers = entry ? entry.modifiers : 0
        keyDisplay = entry ? entry.keyDisplay : ""
        type = entry ? entry.type : KeyMappingType.Tap
        const data = entry ? entry.data : ({})
        pointX = type === KeyMappingType.Tap && entry ? data.x : 0.5
        pointY = type === KeyMappingType.Tap && entry ? data.y : 0.5
        count = type === KeyMappingType.Tap && entry ? data.count : 1
        startX = type === KeyMappingType.Swipe ? data.startX : 0.2
        startY = type === KeyMappingType.Swipe ? data.startY : 0.5
        endX = type === KeyMappingType.Swipe ? data.endX : 0.8
        endY = type === KeyMappingType.Swipe ? data.endY : 0.5
        duration = type === KeyMappingType.Swipe ? data.duration : 200
        placingEnd = false
        editing = true
        keyField.forceActiveFocus()
    }

    function saveEntry() {
        if (!profile)
            return
        const data = type === KeyMappingType.Tap
                ? { x: pointX, y: pointY, count: count }
                : { startX: startX, startY: startY, endX: endX, endY: endY, duration: duration }
        problem = profile.mappingProblem(editIndex, keyCode, modifiers, keyDisplay, type, data)
        if (problem.length > 0)
            return
        if (editIndex >= 0)
            profile.updateMappingWithType(editIndex, keyCode, modifiers, keyDisplay, type, data)
        else
            profile.addMappingWithType(keyCode, modifiers, keyDisplay, type, data)
        editing = false
    }

    function place(fx, fy) {
        fx = Math.round(Math.min(1, Math.max(0, fx)) * 100) / 100
        fy = Math.round(Math.min(1, Math.max(0, fy)) * 100) / 100
        if (type === KeyMappingType.Tap) {
            pointX = fx
            pointY = fy
        } else if (placingEnd) {
            endX = fx
            endY = fy
        } else {
            startX = fx
            startY = fy
        }
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

    component Caption: Text {
        color: ColorManager.textGray
        font.pixelSize: Theme.fontNormal
    }
    component FractionField: KVTextField {
        property real value
        signal edited(real value)
        Layout.preferredWidth: 70
        text: value.toFixed(2)
        validator: DoubleValidator { bottom: 0; top: 1; decimals: 3; notation: DoubleValidator.StandardNotation }
        onTextEdited: edited(Number(text))
    }

    contentItem: RowLayout {
        spacing: 14

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 8

            RowLayout {
                Caption { text: qsTr("Mapping Profile:") }
                ComboBox {
                    id: profileCombo
                    objectName: "profileCombo"
                    Layout.preferredWidth: 200
                    model: KeyMapping.profileNames
                    Accessible.name: qsTr("Mapping Profile:")
                    onActivated: dialog.editing = false
                }
                KVButton {
                    objectName: "newProfileButton"
                    text: qsTr("New")
                    onClicked: {
                        dialog.creating = true
                        profileNameField.text = ""
                        profileNameField.forceActiveFocus()
                    }
                }
                KVButton {
                    objectName: "deleteProfileButton"
                    text: qsTr("Delete Profile")
                    textColor: ColorManager.textRed
                    enabled: dialog.profile !== null
                    onClicked: {
                        const name = profileCombo.currentText
                        const question = qsTr("Are you sure you want to delete profile") + " \"" + name + "\"?"
                        confirmDelete.ask(question, () => {
                            KeyMapping.removeProfile(name)
                            profileCombo.currentIndex = KeyMapping.profileNames.length > 0 ? 0 : -1
                            dialog.editing = false
                        })
                    }
                }
            }

            RowLayout {
                visible: dialog.creating
                Caption { text: qsTr("Create New Profile"); color: ColorManager.textGreen }
                Caption { text: qsTr("Profile Name:") }
                KVTextField {
                    id: profileNameField
                    objectName: "profileNameField"
                    Layout.fillWidth: true
                    placeholderText: qsTr("Enter profile name...")
                    Accessible.name: qsTr("Profile Name:")
                    onAccepted: createButton.clicked()
                }
                KVButton {
                    id: createButton
                    objectName: "createProfileButton"
                    text: qsTr("Create")
                    enabled: profileNameField.text.trim().length > 0
                    onClicked: {
                        const name = profileNameField.text.trim()
                        if (!KeyMapping.addProfile(name)) {
                            dialog.problem = qsTr("A profile with this name already exists.")
                            return
                        }
                        dialog.problem = ""
                        profileCombo.currentIndex = KeyMapping.profileNames.indexOf(name)
                        dialog.creating = false
                    }
                }
                KVButton {
                    text: qsTr("Cancel")
                    textColor: ColorManager.textWhite
                    onClicked: {
                        dialog.creating = false
                        dialog.problem = ""
                    }
                }
            }
            Text {
                objectName: "createProblemText"
                visible: dialog.creating && dialog.problem.length > 0
                text: dialog.problem
                color: ColorManager.textRed
                font.pixelSize: Theme.fontSmall
            }

            // The mapping table.
            KeyMappingTable {
                Layout.fillWidth: true
                Layout.fillHeight: true
                profile: dialog.profile
                onEditRequested: index => dialog.startEdit(index)
            }

            RowLayout {
                KVButton {
                    objectName: "addMappingButton"
                    text: qsTr("Add New Mapping")
                    enabled: dialog.profile !== null
                    onClicked: dialog.startEdit(-1)
                }
                Item { Layout.fillWidth: true }
                KVButton {
                    objectName: "closeButton"
                    text: qsTr("Close")
                    textColor: ColorManager.textWhite
                    onClicked: dialog.close()
                }
            }
        }

        // The editor.
        ColumnLayout {
            Layout.preferredWidth: 360
            Layout.fillHeight: true
            spacing: 8

            GridLayout {
                visible: dialog.editing
                columns: 4
                columnSpacing: 8
                rowSpacing: 6

                Text {
                    Layout.columnSpan: 4
                    text: dialog.editIndex < 0 ? qsTr("Add New Key Mapping")
                                               : dialog.type === KeyMappingType.Tap ? qsTr("Edit Key Mapping") : qsTr("Edit Swipe Mapping")
                    color: ColorManager.textGreen
                    font.pixelSize: Theme.fontNormal
                    font.bold: true
                }

                Caption { text: qsTr("Key:") }
                KVTextField {
                    id: keyField
                    objectName: "keyField"
                    Layout.columnSpan: 3
                    Layout.fillWidth: true
                    readOnly: true
                    text: dialog.keyDisplay
                    placeholderText: qsTr("Press a key...")
                    Accessible.name: qsTr("Key:")
                    Keys.onPressed: event => {
                        const display = KeyMapping.keyDisplayText(event.key, event.modifiers)
                        event.accepted = true
                        if (display.length === 0)
                            return
                        dialog.keyCode = event.key
                        dialog.modifiers = event.modifiers
                        dialog.keyDisplay = display
                    }
                }

                Caption { text: qsTr("Type:") }
                ComboBox {
                    id: typeCombo
                    objectName: "typeCombo"
                    Layout.columnSpan: 3
                    model: [{ text: qsTr("Touch"), type: KeyMappingType.Tap },
                            { text: qsTr("Swipe"), type: KeyMappingType.Swipe }]
                    textRole: "text"
                    currentIndex: model.findIndex(choice => choice.type === dialog.type)
                    Accessible.name: qsTr("Type:")
                    onActivated: index => dialog.type = model[index].type
                }

                Caption { text: qsTr("X:"); visible: dialog.type === KeyMappingType.Tap }
                FractionField {
                    objectName: "xField"
                    visible: dialog.type === KeyMappingType.Tap
                    value: dialog.pointX
                    Accessible.name: qsTr("X:")
                    onEdited: value => dialog.pointX = value
                }
                Caption { text: qsTr("Y:"); visible: dialog.type === KeyMappingType.Tap }
                FractionField {
                    objectName: "yField"
                    visible: dialog.type === KeyMappingType.Tap
                    value: dialog.pointY
                    Accessible.name: qsTr("Y:")
                    onEdited: value => dialog.pointY = value
                }
                Caption { text: qsTr("Count:"); visible: dialog.type === KeyMappingType.Tap }
                SpinBox {
                    objectName: "countField"
                    visible: dialog.type === KeyMappingType.Tap
                    from: 1
                    to: 10
                    value: dialog.count
                    Accessible.name: qsTr("Count:")
                    onValueModified: dialog.count = value
                }
                Caption { text: qsTr("(1-10)"); visible: dialog.type === KeyMappingType.Tap; Layout.columnSpan: 2 }

                Caption { text: qsTr("Start X:"); visible: dialog.type === KeyMappingType.Swipe }
                FractionField {
                    objectName: "startXField"
                    visible: dialog.type === KeyMappingType.Swipe
                    value: dialog.startX
                    Accessible.name: qsTr("Start X:")
                    onEdited: value => dialog.startX = value
                }
                Caption { text: qsTr("Start Y:"); visible: dialog.type === KeyMappingType.Swipe }
                FractionField {
                    objectName: "startYField"
                    visible: dialog.type === KeyMappingType.Swipe
                    value: dialog.startY
                    Accessible.name: qsTr("Start Y:")
                    onEdited: value => dialog.startY = value
                }
                Caption { text: qsTr("End X:"); visible: dialog.type === KeyMappingType.Swipe }
                FractionField {
                    objectName: "endXField"
                    visible: dialog.type === KeyMappingType.Swipe
                    value: dialog.endX
                    Accessible.name: qsTr("End X:")
                    onEdited: value => dialog.endX = value
                }
                Caption { text: qsTr("End Y:"); visible: dialog.type === KeyMappingType.Swipe }
                FractionField {
                    objectName: "endYField"
                    visible: dialog.type === KeyMappingType.Swipe
                    value: dialog.endY
                    Accessible.name: qsTr("End Y:")
                    onEdited: value => dialog.endY = value
                }
                Caption { text: qsTr("Duration(ms):"); visible: dialog.type === KeyMappingType.Swipe }
                SpinBox {
                    objectName: "durationField"
                    visible: dialog.type === KeyMappingType.Swipe
                    from: 50
                    to: 2000
                    stepSize: 50
                    editable: true
                    value: dialog.duration
                    Accessible.name: qsTr("Duration:")
                    onValueModified: dialog.duration = value
                }
                Caption { text: qsTr("(50-2000ms)"); visible: dialog.type === KeyMappingType.Swipe; Layout.columnSpan: 2 }

                RowLayout {
                    Layout.columnSpan: 4
                    visible: dialog.type === KeyMappingType.Swipe
                    RadioButton {
                        objectName: "placeStart"
                        text: qsTr("Start")
                        checked: !dialog.placingEnd
                        onClicked: dialog.placingEnd = false
                    }
                    RadioButton {
                        objectName: "placeEnd"
                        text: qsTr("End")
                        checked: dialog.placingEnd
                        onClicked: dialog.placingEnd = true
                    }
                }

                Text {
                    objectName: "problemText"
                    Layout.columnSpan: 4
                    visible: dialog.problem.length > 0
                    text: dialog.problem
                    color: ColorManager.textRed
                    font.pixelSize: Theme.fontSmall
                }

                RowLayout {
                    Layout.columnSpan: 4
                    KVButton {
                        objectName: "saveMappingButton"
                        text: qsTr("Save")
                        onClicked: dialog.saveEntry()
                    }
                    KVButton {
                        text: qsTr("Cancel")
                        textColor: ColorManager.textWhite
                        onClicked: dialog.editing = false
                    }
                }
            }

            RowLayout {
                visible: dialog.runningDevices.length > 1
                Caption { text: qsTr("Phone:") }
                ComboBox {
                    id: phoneCombo
                    objectName: "phoneCombo"
                    Layout.fillWidth: true
                    model: dialog.runningDevices.map(device => device.nickName.length > 0 ? device.nickName
                                                                                           : device.adbConnectionSerial)
                    Accessible.name: qsTr("Phone:")
                }
            }

            Item { Layout.fillHeight: true }
        }

        // The live picture: a click places the point being edited.
        ColumnLayout {
            Layout.fillHeight: true
            KeyMappingPreview {
                editor: dialog
                Layout.alignment: Qt.AlignTop
                Layout.preferredHeight: 480
                Layout.preferredWidth: Math.round(480 / Theme.phoneAspect)
            }
            Item { Layout.fillHeight: true }
        }
    }

    KVConfirm { id: confirmDelete; objectName: "confirmQuestion" }
}
