import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Korvel

Dialog {
    id: dialog
    title: qsTr("Application Settings")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 640

    property string selectedLocale
    property int adbMaxProcesses: 8
    property bool shownStartRack: false
    // What was shown on opening: only the language and the folders wait for a restart.
    property string shownLocale: ""
    property string shownPaths: ""
    property var paths: ({})

    readonly property var languages: [
        { name: "简体中文", locale: "zh_CN" },
        { name: "繁體中文", locale: "zh_TW" },
        { name: "English", locale: "en_US" }
    ]
    readonly property var pathRows: [
        { key: "video", label: qsTr("Video save path"), chooser: qsTr("Select video save path") },
        { key: "screenshot", label: qsTr("Screenshot save path"), chooser: qsTr("Select screenshot save path") },
        { key: "keyMapping", label: qsTr("KeyMapping save path"), chooser: qsTr("Select KeyMapping save path") },
        { key: "commonPhrase", label: qsTr("Common Phrase save path"), chooser: qsTr("Select Common Phrase save path") },
        { key: "deviceNickname", label: qsTr("Device Nickname save path"), chooser: qsTr("Select Device Nickname save path") },
        { key: "deviceGroup", label: qsTr("Device Group save path"), chooser: qsTr("Select Device Group save path") }
    ]

    onAboutToShow: {
        selectedLocale = AppConfig.getLocale()
        adbMaxProcesses = parseInt(AppConfig.getAppSetting("adbMaxProcesses", "8")) || 8
        adbProcessesBox.value = adbMaxProcesses
        startRackBox.checked = AppConfig.getAppSetting("start_rack_at_launch", "false") === "true"
        shownStartRack = startRackBox.checked
        paths = {
            video: AppConfig.getVideoSavePath(),
            screenshot: AppConfig.getScreenshotSavePath(),
            keyMapping: AppConfig.getKeyMappingSavePath(),
            commonPhrase: AppConfig.getCommonPhraseSavePath(),
            deviceNickname: AppConfig.getDeviceNicknameSavePath(),
            deviceGroup: AppConfig.getDeviceGroupSavePath()
        }
        const index = languages.findIndex(language => language.locale === selectedLocale)
        languageBox.currentIndex = index < 0 ? 0 : index
        shownLocale = selectedLocale
        shownPaths = JSON.stringify(paths)
    }

    function setPath(key, value) {
        const copy = Object.assign({}, paths)
        copy[key] = value
        paths = copy
    }

    function save() {
        AppConfig.setLocale(selectedLocale)
        AppConfig.setAppSetting("adbMaxProcesses", String(adbProcessesBox.value))
        AppConfig.setAppSetting("start_rack_at_launch", startRackBox.checked ? "true" : "false")
        AppConfig.setVideoSavePath(paths.video)
        AppConfig.setScreenshotSavePath(paths.screenshot)
        AppConfig.setKeyMappingSavePath(paths.keyMapping)
        AppConfig.setCommonPhraseSavePath(paths.commonPhrase)
        AppConfig.setDeviceNicknameSavePath(paths.deviceNickname)
        AppConfig.setDeviceGroupSavePath(paths.deviceGroup)
        AppConfig.sync()
        const restartNeeded = selectedLocale !== shownLocale || JSON.stringify(paths) !== shownPaths
                              || startRackBox.checked !== shownStartRack
        savedAlert.show(qsTr("Success"), restartNeeded
                        ? qsTr("Please restart the application to apply the changes.")
                        : qsTr("Saved. The changes apply at once."))
        dialog.close()
    }

    background: Rectangle {
        color: ColorManager.backgroundDarkGray
        border.color: ColorManager.borderDarkGreen
        radius: Theme.radius
    }

    contentItem: ColumnLayout {
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            Text {
                text: qsTr("Language")
                color: ColorManager.textWhite
                font.pixelSize: Theme.fontNormal
                Layout.preferredWidth: 190
            }
            ComboBox {
                id: languageBox
                Layout.fillWidth: true
                Accessible.name: qsTr("Language")
                model: dialog.languages.map(language => language.name)
                onActivated: index => dialog.selectedLocale = dialog.languages[index].locale
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Text {
                text: qsTr("adb processes at once")
                color: ColorManager.textWhite
                font.pixelSize: Theme.fontNormal
                Layout.preferredWidth: 190
            }
            SpinBox {
                id: adbProcessesBox
                objectName: "adbProcessesBox"
                Accessible.name: qsTr("adb processes at once")
                from: 1
                to: 64
                editable: true
            }
            Item { Layout.fillWidth: true }
        }

        KVCheckBox {
            id: startRackBox
            objectName: "startRackBox"
            text: qsTr("Start the rack at launch")
        }

        Repeater {
            model: dialog.pathRows
            RowLayout {
                required property var modelData
                Layout.fillWidth: true
                Text {
                    text: modelData.label
                    color: ColorManager.textWhite
                    font.pixelSize: Theme.fontNormal
                    Layout.preferredWidth: 190
                }
                KVTextField {
                    Layout.fillWidth: true
                    Accessible.name: modelData.label
                    text: dialog.paths[modelData.key] || ""
                    onEditingFinished: dialog.setPath(modelData.key, text)
                }
                KVButton {
                    text: qsTr("Browse...")
                    onClicked: {
                        folderDialog.key = modelData.key
                        folderDialog.title = modelData.chooser
                        folderDialog.open()
                    }
                }
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignRight
            KVButton {
                text: qsTr("Cancel")
                textColor: ColorManager.textWhite
                onClicked: dialog.close()
            }
            KVButton {
                text: qsTr("Save")
                onClicked: dialog.save()
            }
        }
    }

    FolderDialog {
        id: folderDialog
        property string key
        // Only the "file://" scheme is cut off; the rest of the URL stays as the chooser gave it.
        onAccepted: dialog.setPath(key, selectedFolder.toString().substring(7))
    }

    KVAlert {
        id: savedAlert
        parent: Overlay.overlay
    }
}
