set(korvel_qml_singletons src/qml/Theme.qml)
set_source_files_properties(${korvel_qml_singletons} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
list(APPEND KORVEL_QML_FILES
    src/qml/Main.qml
    src/qml/Theme.qml
    src/qml/IconPaths.js
    src/qml/FileUrls.js
    src/qml/MenuButton.qml
    src/qml/KVButton.qml
    src/qml/KVToolTip.qml
    src/qml/KVTextField.qml
    src/qml/KVAlert.qml
    src/qml/KVCheckBox.qml
    src/qml/Icon.qml
    src/qml/HeaderButton.qml
    src/qml/MessageStrip.qml
    src/qml/FilePicker.qml
    src/qml/DeviceList.qml
    src/qml/DeviceMenu.qml
    src/qml/PhoneScreenGrid.qml
    src/qml/DeviceView.qml
    src/qml/PhoneInputArea.qml
    src/qml/ScreenCoordinateDisplayer.qml
    src/qml/BigDeviceView.qml
    src/qml/ControlButtons.qml
    src/qml/DeviceScanDialog.qml
    src/qml/DeviceGroupManagerDialog.qml
    src/qml/GroupSettingsDialog.qml
    src/qml/DeviceRenameDialog.qml
    src/qml/DeviceInfoDialog.qml
    src/qml/ADBCommandDialog.qml
    src/qml/GroupOperationView.qml
    src/qml/GroupOperationDialog.qml
    src/qml/ADBRestartDialog.qml
    src/qml/AboutDialog.qml
    src/qml/AppSettingsDialog.qml
    src/qml/KVConfirm.qml
    src/qml/CustomCircleCursor.qml
    src/qml/CommonPhrasesDialog.qml
    src/qml/PhraseSelectionDialog.qml
    src/qml/KeyMappingDialog.qml
    src/qml/KeyMappingTable.qml
    src/qml/KeyMappingPreview.qml
    src/qml/KeyMapProfilePicker.qml
)
list(APPEND KORVEL_SOURCES src/qml/korveltypes.h)
