import QtQuick
import QtTest
import Korvel

// The dialogs: each per-phone and per-group one opens with its title and not a single QML warning
// (the big view window is tst_phonegrid's); the group manager refuses unusable names before it asks
// the manager for anything; the phrase and key-mapping dialogs edit and keep their work in the backend.
KorvelTestCase {
    id: testCase
    name: "Dialogs"
    width: 1200
    height: 900

    DeviceGroup { id: testGroup }
    Device { id: testDevice }

    Component { id: settingsComponent; GroupSettingsDialog { group: testGroup } }
    Component { id: commandComponent; ADBCommandDialog { deviceGroup: testGroup } }
    Component { id: infoComponent; DeviceInfoDialog { device: testDevice } }
    Component { id: renameComponent; DeviceRenameDialog { device: testDevice } }
    Component { id: operationComponent; GroupOperationDialog { operation: testGroup.actions.executeADBCommand("shell true") } }

    function test_dialogsOpen_data() {
        return [
            { tag: "group settings", component: settingsComponent, title: "Group Settings" },
            { tag: "adb command", component: commandComponent, title: "ADB Command" },
            { tag: "device information", component: infoComponent, title: "Device Information" },
            { tag: "rename", component: renameComponent, title: "Rename Device" },
            { tag: "group operation", component: operationComponent, title: "ADB Command" }
        ]
    }

    function test_dialogsOpen(data) {
        const dialog = openDialog(data.component)
        compare(dialog.title, data.title)
        dialog.close()
        tryVerify(() => !dialog.visible)
    }

    DeviceGroupManager { id: manager }

    Component { id: groupManagerComponent; DeviceGroupManagerDialog { groupManager: manager } }

    function groupNamed(name) {
        return manager.deviceGroups.find(group => group.name === name)
    }

    function submitName(dialog, name) {
        findChild(dialog, "groupNameField").text = name
        click(findChild(dialog, "groupNameSubmit"))
    }

    function cleanup() {
        // The manager keeps its groups in a file: leave only what was there before.
        for (const group of manager.deviceGroups.slice()) {
            if (group.name.startsWith("Rack "))
                manager.removeDeviceGroup(group)
        }
    }

    function test_refusesNames_data() {
        return [
            { tag: "empty", name: "", error: "Group name cannot be empty" },
            { tag: "blank", name: "   ", error: "Group name cannot be empty" },
            { tag: "taken", name: manager.deviceGroups[0].name, error: "Group name already exists" }
        ]
    }

    function test_refusesNames(data) {
        const dialog = openDialog(groupManagerComponent)
        const before = manager.deviceGroups.length
        click(findChild(dialog, "newGroupButton"))
        submitName(dialog, data.name)
        const alert = findChild(dialog, "groupNameErrorAlert")
        tryVerify(() => alert.opened)
        compare(alert.title, "Error")
        compare(alert.message, data.error)
        compare(manager.deviceGroups.length, before)
        alert.close()
    }

    function test_createsAndRenames() {
        const dialog = openDialog(groupManagerComponent)
        const before = manager.deviceGroups.length
        click(findChild(dialog, "newGroupButton"))
        submitName(dialog, "Rack A")
        compare(manager.deviceGroups.length, before + 1)
        const rack = groupNamed("Rack A")
        verify(rack)

        // Renaming to another group's name is refused; to its own name or a new one is not.
        dialog.startEdit(rack)
        submitName(dialog, manager.deviceGroups[0].name)
        const alert = findChild(dialog, "groupNameErrorAlert")
        tryVerify(() => alert.opened)
        compare(alert.message, "Group name already exists")
        alert.close()
        tryVerify(() => !alert.visible)
        compare(rack.name, "Rack A")

        dialog.startEdit(rack)
        submitName(dialog, "Rack A")
        verify(!alert.visible)
        dialog.startEdit(rack)
        submitName(dialog, "Rack B")
        compare(rack.name, "Rack B")
    }

    function test_deletingTheSelectedGroupSelectsAnother() {
        manager.createDeviceGroup("Rack C")
        const rack = groupNamed("Rack C")
        manager.setCurrentSelectedGroup(rack)
        const dialog = openDialog(groupManagerComponent)
        dialog.deleteGroup(rack)
        verify(!groupNamed("Rack C"))
        compare(manager.currentSelectedGroup, manager.deviceGroups[0])
    }

    // What an earlier, interrupted run left in the files.
    function initTestCase() {
        KeyMapping.removeProfile("Harvest")
        for (const category of CommonPhraseManager.getCategoriesList()) {
            if (["Farm chat", "Farm talk", "Replies"].includes(category.name))
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

        // Renaming the category keeps its description.
        category.description = "daily"
        click(findChild(dialog, "editCategoryButton"))
        findChild(dialog, "categoryField").text = "Farm talk"
        click(findChild(dialog, "addCategoryButton"))
        compare(category.name, "Farm talk")
        compare(category.description, "daily")

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
        compare(mappings[0].type, KeyMappingType.Tap)
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
