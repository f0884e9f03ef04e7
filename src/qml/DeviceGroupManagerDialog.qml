import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Creates, renames and deletes device groups.
Dialog {
    id: dialog
    property DeviceGroupManager groupManager: null
    // The group being renamed; null while a new group is being made.
    property DeviceGroup editingGroup: null
    property bool formVisible: false

    readonly property var groups: groupManager ? groupManager.deviceGroups : []

    title: qsTr("Device Group Manager")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 520
    height: 520
    padding: 14

    // The reason a name cannot be used, or an empty text when it can.
    function nameError(name, exceptGroup) {
        if (name.trim().length === 0)
            return qsTr("Group name cannot be empty")
        for (let i = 0; i < groups.length; ++i) {
            if (groups[i] !== exceptGroup && groups[i].name === name.trim())
                return qsTr("Group name already exists")
        }
        return ""
    }

    function startNew() {
        editingGroup = null
        nameField.text = ""
        formVisible = true
        nameField.forceActiveFocus()
    }

    function startEdit(group) {
        editingGroup = group
        nameField.text = group.name
        formVisible = true
        nameField.forceActiveFocus()
    }

    function cancelForm() {
        formVisible = false
        editingGroup = null
        nameField.text = ""
    }

    // Creates or renames; returns whether the name was accepted.
    function submit() {
        const name = nameField.text.trim()
        const error = nameError(name, editingGroup)
        if (error.length > 0) {
            errorAlert.show(qsTr("Error"), error)
            return false
        }
        if (editingGroup)
            editingGroup.renameTo(name)
        else
            groupManager.createDeviceGroup(name)
        cancelForm()
        return true
    }

    function deleteGroup(group) {
        const wasSelected = groupManager.currentSelectedGroup === group
        groupManager.removeDeviceGroup(group)
        if (wasSelected)
            groupManager.setCurrentSelectedGroup(groups.length > 0 ? groups[0] : null)
    }

    onClosed: cancelForm()

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
        spacing: 10

        ListView {
            id: groupList
            objectName: "groupList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 4
            model: dialog.groups
            ScrollBar.vertical: ScrollBar {}

            delegate: Rectangle {
                id: groupRow
                required property var modelData
                width: groupList.width
                height: 38
                radius: Theme.radius
                color: ColorManager.backgroundBlack
                border.color: dialog.groupManager && dialog.groupManager.currentSelectedGroup === modelData
                              ? ColorManager.borderDarkGreen : ColorManager.borderDarkGray

                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 10
                    anchors.rightMargin: 6
                    spacing: 6
                    Text {
                        Layout.fillWidth: true
                        text: groupRow.modelData.name
                        color: ColorManager.textWhite
                        font.pixelSize: Theme.fontNormal
                        elide: Text.ElideRight
                    }
                    Text {
                        text: qsTr("Devices") + ": " + groupRow.modelData.deviceCount
                        color: ColorManager.textGray
                        font.pixelSize: Theme.fontSmall
                    }
                    KVButton {
                        text: qsTr("Edit")
                        implicitHeight: 28
                        onClicked: dialog.startEdit(groupRow.modelData)
                    }
                    KVButton {
                        text: qsTr("Delete")
                        implicitHeight: 28
                        textColor: ColorManager.textRed
                        onClicked: {
                            deleteQuestion.group = groupRow.modelData
                            deleteQuestion.open()
                        }
                    }
                }
            }

            Text {
                anchors.centerIn: parent
                visible: groupList.count === 0
                text: qsTr("No device groups")
                color: ColorManager.textGray
                font.pixelSize: Theme.fontNormal
            }
        }

        // The name form, for a new group or a rename.
        Rectangle {
            Layout.fillWidth: true
            visible: dialog.formVisible
            implicitHeight: form.implicitHeight + 20
            radius: Theme.radius
            color: ColorManager.backgroundBlack
            border.color: ColorManager.borderDarkGray

            ColumnLayout {
                id: form
                anchors.fill: parent
                anchors.margins: 10
                spacing: 6
                Text {
                    text: qsTr("Group Name")
                    color: ColorManager.textWhite
                    font.pixelSize: Theme.fontNormal
                }
                KVTextField {
                    id: nameField
                    objectName: "groupNameField"
                    Accessible.name: qsTr("Group Name")
                    Layout.fillWidth: true
                    placeholderText: qsTr("Enter group name...")
                    onAccepted: dialog.submit()
                }
                RowLayout {
                    Layout.alignment: Qt.AlignRight
                    KVButton {
                        text: qsTr("Cancel")
                        textColor: ColorManager.textWhite
                        onClicked: dialog.cancelForm()
                    }
                    KVButton {
                        objectName: "groupNameSubmit"
                        text: dialog.editingGroup ? qsTr("Save") : qsTr("Create")
                        onClicked: dialog.submit()
                    }
                }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            KVButton {
                objectName: "newGroupButton"
                text: qsTr("New Group")
                onClicked: dialog.startNew()
            }
            Item { Layout.fillWidth: true }
            KVButton {
                text: qsTr("Close")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
        }
    }

    KVAlert {
        id: errorAlert
        objectName: "groupNameErrorAlert"
    }

    Dialog {
        id: deleteQuestion
        property DeviceGroup group: null
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
                objectName: "deleteQuestionText"
                readonly property int phones: deleteQuestion.group ? deleteQuestion.group.deviceCount : 0
                Layout.fillWidth: true
                text: qsTr("Are you sure you want to delete group \"%1\"?").arg(deleteQuestion.group ? deleteQuestion.group.name : "")
                      + (phones === 1 ? " " + qsTr("Its phone is removed with it.")
                         : phones > 1 ? " " + qsTr("Its %1 phones are removed with it.").arg(phones) : "")
                color: ColorManager.textWhite
                font.pixelSize: Theme.fontNormal
                wrapMode: Text.Wrap
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                KVButton {
                    text: qsTr("Cancel")
                    textColor: ColorManager.textWhite
                    onClicked: deleteQuestion.close()
                }
                KVButton {
                    text: qsTr("Delete")
                    textColor: ColorManager.textRed
                    onClicked: {
                        if (deleteQuestion.group)
                            dialog.deleteGroup(deleteQuestion.group)
                        deleteQuestion.close()
                    }
                }
            }
        }
        onClosed: group = null
    }
}
