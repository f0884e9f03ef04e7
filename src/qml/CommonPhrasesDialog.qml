import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Manages the phrase library: categories on the left, the chosen category's phrases on the right.
Dialog {
    id: dialog
    property string categoryId: ""
    // The phrase being edited, or empty while the field adds new ones.
    property string editingPhraseId: ""
    property bool editingCategory: false
    readonly property var phrases: {
        CommonPhraseManager.phrases
        return CommonPhraseManager.getPhrasesByCategory(dialog.categoryId)
    }

    title: qsTr("Common Phrases Manager")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 760
    height: 500
    padding: 14

    onAboutToShow: {
        categoryId = CommonPhraseManager.currentCategoryId
        editingPhraseId = ""
        editingCategory = false
        phraseField.text = ""
        categoryField.text = ""
    }

    function selectCategory(id) {
        categoryId = id
        CommonPhraseManager.currentCategoryId = id
        editingPhraseId = ""
        phraseField.text = ""
    }

    function submitCategory() {
        const name = categoryField.text.trim()
        if (name.length === 0)
            return
        if (editingCategory && categoryId.length > 0)
            CommonPhraseManager.renameCategory(categoryId, name)
        else
            CommonPhraseManager.addCategory(name)
        editingCategory = false
        categoryField.text = ""
    }

    function submitPhrase() {
        const text = phraseField.text
        if (text.trim().length === 0 || categoryId.length === 0)
            return
        if (editingPhraseId.length > 0)
            CommonPhraseManager.updatePhrase(editingPhraseId, text, categoryId, phraseDescription.text)
        else
            CommonPhraseManager.addPhrase(text, categoryId, phraseDescription.text)
        editingPhraseId = ""
        phraseField.text = ""
        phraseDescription.text = ""
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
        color: ColorManager.textGray
        font.pixelSize: Theme.fontNormal
    }

    contentItem: ColumnLayout {
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 14

            ColumnLayout {
                Layout.preferredWidth: 240
                Layout.fillHeight: true
                spacing: 6

                SectionTitle { text: qsTr("Category:") }
                ListView {
                    objectName: "categoryList"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    clip: true
                    spacing: 2
                    model: CommonPhraseManager.categories
                    delegate: ItemDelegate {
                        required property var modelData
                        width: ListView.view.width
                        height: 30
                        text: modelData.name
                        Accessible.name: modelData.name
                        highlighted: modelData.id === dialog.categoryId
                        onClicked: dialog.selectCategory(modelData.id)
                    }
                }
                SectionTitle { text: qsTr("New Category") }
                KVTextField {
                    id: categoryField
                    objectName: "categoryField"
                    Layout.fillWidth: true
                    placeholderText: qsTr("Enter category name...")
                    Accessible.name: qsTr("New Category")
                    onAccepted: dialog.submitCategory()
                }
                RowLayout {
                    KVButton {
                        objectName: "addCategoryButton"
                        text: dialog.editingCategory ? qsTr("Update") : qsTr("Add")
                        enabled: categoryField.text.trim().length > 0
                        onClicked: dialog.submitCategory()
                    }
                    KVButton {
                        objectName: "editCategoryButton"
                        text: dialog.editingCategory ? qsTr("Cancel") : qsTr("Edit")
                        enabled: dialog.categoryId.length > 0
                        onClicked: {
                            dialog.editingCategory = !dialog.editingCategory
                            const category = CommonPhraseManager.getCategoryById(dialog.categoryId)
                            categoryField.text = dialog.editingCategory && category ? category.name : ""
                        }
                    }
                    KVButton {
                        objectName: "deleteCategoryButton"
                        text: qsTr("Delete")
                        textColor: ColorManager.textRed
                        enabled: dialog.categoryId.length > 0
                        onClicked: confirmDelete.ask(qsTr("Are you sure you want to delete category?"), () => {
                            CommonPhraseManager.removeCategory(dialog.categoryId)
                            dialog.selectCategory("")
                        })
                    }
                }
            }

            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                spacing: 6

                SectionTitle { text: qsTr("Phrases:") }
                ListView {
                    objectName: "phraseList"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    clip: true
                    spacing: 2
                    model: dialog.phrases
                    delegate: ItemDelegate {
                        required property var modelData
                        width: ListView.view.width
                        height: 30
                        text: modelData.description.length > 0 ? modelData.text + "  —  " + modelData.description
                                                                : modelData.text
                        Accessible.name: modelData.text
                        highlighted: modelData.id === dialog.editingPhraseId
                        onClicked: {
                            dialog.editingPhraseId = modelData.id
                            phraseField.text = modelData.text
                            phraseDescription.text = modelData.description
                        }
                    }
                }
                KVTextField {
                    id: phraseField
                    objectName: "phraseField"
                    Layout.fillWidth: true
                    placeholderText: qsTr("Enter phrase text...")
                    Accessible.name: placeholderText
                    enabled: dialog.categoryId.length > 0
                    onAccepted: dialog.submitPhrase()
                }
                KVTextField {
                    id: phraseDescription
                    objectName: "phraseDescriptionField"
                    Layout.fillWidth: true
                    placeholderText: qsTr("Description")
                    Accessible.name: placeholderText
                    enabled: dialog.categoryId.length > 0
                }
                RowLayout {
                    KVButton {
                        objectName: "addPhraseButton"
                        text: dialog.editingPhraseId.length > 0 ? qsTr("Update") : qsTr("Add")
                        enabled: dialog.categoryId.length > 0 && phraseField.text.trim().length > 0
                        onClicked: dialog.submitPhrase()
                    }
                    KVButton {
                        objectName: "newPhraseButton"
                        text: qsTr("New")
                        enabled: dialog.editingPhraseId.length > 0
                        onClicked: {
                            dialog.editingPhraseId = ""
                            phraseField.text = ""
                            phraseDescription.text = ""
                        }
                    }
                    KVButton {
                        objectName: "deletePhraseButton"
                        text: qsTr("Delete")
                        textColor: ColorManager.textRed
                        enabled: dialog.editingPhraseId.length > 0
                        onClicked: confirmDelete.ask(qsTr("Are you sure you want to delete the phrase?"), () => {
                            CommonPhraseManager.removePhrase(dialog.editingPhraseId)
                            dialog.editingPhraseId = ""
                            phraseField.text = ""
                            phraseDescription.text = ""
                        })
                    }
                }
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            KVButton {
                objectName: "saveButton"
                text: qsTr("Save")
                // Every change is saved as it is made; this writes the library again, as after a
                // save that failed or a folder chosen in the settings.
                onClicked: CommonPhraseManager.saveData()
            }
            KVButton {
                objectName: "closeButton"
                text: qsTr("Close")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
        }
    }

    KVConfirm { id: confirmDelete; objectName: "confirmQuestion" }
}
