import QtQuick
import QtTest
import Korvel

// The phrase and key-mapping dialogs: each opens, edits and keeps its work in the backend.
KorvelTestCase {
    id: testCase
    name: "PhraseKeyDialogs"
    width: 1100
    height: 760

    // What an earlier, interrupted run left in the files.
    function initTestCase() {
        KeyMapping.removeProfile("Harvest")
        for (const category of CommonPhraseManager.getCategoriesList()) {
            if (category.name === "Farm chat" || category.name === "Replies")
                CommonPhraseManager.removeCategory(category.id)
        }
    }

    Component { id: phrasesComponent; CommonPhrasesDialog {} }
    Component { id: selectionComponent; PhraseSelectionDialog {} }
    Component { id: keyMappingComponent; KeyMappingDialog {} }
    SignalSpy { id: selectedSpy; signalName: "phraseSelected" }

    function confirmDelete(dialog) {
        const question = findChild(dialog, "confirmQuestion")
        tryVerify(() => question.opened)
        click(findChild(question, "confirmDelete"))
        tryVerify(() => !question.visible)
    }

    function test_commonPhrasesDialogEditsTheLibrary() {
        const before = CommonPhraseManager.getCategoriesList().length
        const dialog = openDialog(phrasesComponent)
        findChild(dialog, "categoryField").text = "Farm chat"
        click(findChild(dialog, "addCategoryButton"))
        const category = CommonPhraseManager.getCategoriesList().find(c => c.name === "Farm chat")
        verify(category)
        compare(CommonPhraseManager.getCategoriesList().length, before + 1)

        click(itemWithText(findChild(dialog, "categoryList"), "Farm chat"))
        compare(dialog.categoryId, category.id)
        findChild(dialog, "phraseField").text = "收菜了"
        click(findChild(dialog, "addPhraseButton"))
        compare(CommonPhraseManager.getPhrasesByCategory(category.id).map(p => p.text), ["收菜了"])

        // Edit the phrase in place.
        click(itemWithText(findChild(dialog, "phraseList"), "收菜了"))
        findChild(dialog, "phraseField").text = "收菜啦"
        click(findChild(dialog, "addPhraseButton"))
        compare(CommonPhraseManager.getPhrasesByCategory(category.id).map(p => p.text), ["收菜啦"])

        // Deleting the category takes its phrases with it.
        click(findChild(dialog, "deleteCategoryButton"))
        confirmDelete(dialog)
        verify(!CommonPhraseManager.getCategoryById(category.id))
        compare(CommonPhraseManager.getPhrasesByCategory(category.id).length, 0)
        dialog.close()
    }

    function test_phraseSelectionHandsOverTheText() {
        CommonPhraseManager.addCategory("Replies")
        const category = CommonPhraseManager.getCategoriesList().find(c => c.name === "Replies")
        CommonPhraseManager.addPhrase("ok 👍", category.id)
        const dialog = openDialog(selectionComponent)
        selectedSpy.target = dialog
        selectedSpy.clear()
        click(itemWithText(findChild(dialog, "phraseCategoryList"), "Replies"))
        click(itemWithText(findChild(dialog, "phraseList"), "ok 👍"))
        compare(selectedSpy.count, 1)
        compare(selectedSpy.signalArguments[0][0], "ok 👍")
        tryVerify(() => !dialog.visible)
        CommonPhraseManager.removeCategory(category.id)
    }

    function test_keyMappingDialogCreatesAProfileAndAMapping() {
        const dialog = openDialog(keyMappingComponent)
        click(findChild(dialog, "newProfileButton"))
        findChild(dialog, "profileNameField").text = "Harvest"
        click(findChild(dialog, "createProfileButton"))
        verify(KeyMapping.hasProfile("Harvest"))
        compare(findChild(dialog, "profileCombo").currentText, "Harvest")
        // A second profile of the same name is refused with a reason.
        click(findChild(dialog, "newProfileButton"))
        findChild(dialog, "profileNameField").text = "Harvest"
        click(findChild(dialog, "createProfileButton"))
        verify(findChild(dialog, "createProblemText").visible)
        compare(KeyMapping.profileNames.filter(name => name === "Harvest").length, 1)

        click(findChild(dialog, "addMappingButton"))
        const keyField = findChild(dialog, "keyField")
        tryVerify(() => keyField.activeFocus)
        // A bare modifier is not a key of its own.
        keyPress(Qt.Key_Shift)
        keyRelease(Qt.Key_Shift)
        compare(keyField.text, "")
        keyClick(Qt.Key_Q, Qt.ControlModifier)
        compare(keyField.text, "Ctrl+Q")

        // A click on the picture places the tap.
        const picture = findChild(dialog, "mappingPicture")
        click(picture, picture.width * 0.25, picture.height * 0.75)
        click(findChild(dialog, "saveMappingButton"))
        const mappings = KeyMapping.getProfile("Harvest").mappings
        compare(mappings.length, 1)
        compare(mappings[0].keyDisplay, "Ctrl+Q")
        compare(mappings[0].keyCode, Qt.Key_Q)
        compare(mappings[0].modifiers, Qt.ControlModifier)
        compare(mappings[0].type, 0)
        fuzzyCompare(mappings[0].data.x, 0.25, 0.011)
        fuzzyCompare(mappings[0].data.y, 0.75, 0.011)
        compare(mappings[0].data.count, 1)

        // The same key again is refused with a reason.
        click(findChild(dialog, "addMappingButton"))
        keyClick(Qt.Key_Q, Qt.ControlModifier)
        click(findChild(dialog, "saveMappingButton"))
        verify(findChild(dialog, "problemText").visible)
        compare(KeyMapping.getProfile("Harvest").mappings.length, 1)

        click(findChild(dialog, "deleteProfileButton"))
        confirmDelete(dialog)
        verify(!KeyMapping.hasProfile("Harvest"))
        dialog.close()
    }
}
