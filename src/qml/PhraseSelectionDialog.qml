import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Korvel

// Picks a stored phrase for one phone; the owner sends the text.
Dialog {
    id: dialog
    property string categoryId: ""
    readonly property var phrases: {
        CommonPhraseManager.phrases
        return CommonPhraseManager.getPhrasesByCategory(dialog.categoryId)
    }

    signal phraseSelected(string text)

    function choose(text) {
        dialog.phraseSelected(text)
        dialog.close()
    }

    title: qsTr("Select Phrase")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 560
    height: 420
    padding: 14

    onAboutToShow: categoryId = CommonPhraseManager.currentCategoryId

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

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 10

            ListView {
                id: categoryList
                objectName: "phraseCategoryList"
                Layout.preferredWidth: 170
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
                    onClicked: {
                        dialog.categoryId = modelData.id
                        CommonPhraseManager.currentCategoryId = modelData.id
                    }
                }
            }

            ListView {
                id: phraseList
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
                    onClicked: dialog.choose(modelData.text)
                }
            }
        }

        KVButton {
            Layout.alignment: Qt.AlignRight
            text: qsTr("Close")
            textColor: ColorManager.textWhite
            onClicked: dialog.close()
        }
    }
}
