import QtQuick
import QtQuick.Dialogs
import QtTest
import Korvel

// The file and folder choosers open for real (they need Qt's folder model at run time).
TestCase {
    id: testCase
    name: "FilePicker"
    when: windowShown
    visible: true
    width: 900
    height: 700

    function init() {
        failOnWarning(/.*/)
    }

    Component {
        id: pickerComponent
        FilePicker {}
    }

    Component {
        id: folderComponent
        FolderDialog {}
    }

    function test_fileChooserOpensWithItsTitle() {
        const picker = createTemporaryObject(pickerComponent, testCase)
        picker.pick("Select APK File", ["APK files (*.apk)"], function (path) {})
        tryVerify(() => picker.visible)
        compare(picker.title, "Select APK File")
        compare(picker.nameFilters, ["APK files (*.apk)"])
        picker.reject()
        tryVerify(() => !picker.visible)
        compare(picker.callback, null)
    }

    function test_folderChooserOpens() {
        const chooser = createTemporaryObject(folderComponent, testCase)
        chooser.open()
        tryVerify(() => chooser.visible)
        chooser.reject()
    }
}
