set(korvel_qml_singletons src/qml/Theme.qml)
set_source_files_properties(${korvel_qml_singletons} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
list(APPEND KORVEL_QML_FILES
    src/qml/Main.qml
    src/qml/Theme.qml
    src/qml/MenuButton.qml
    src/qml/DeviceList.qml
    src/qml/KVButton.qml
    src/qml/KVToolTip.qml
    src/qml/KVTextField.qml
    src/qml/KVAlert.qml
    src/qml/AboutDialog.qml
    src/qml/AppSettingsDialog.qml
)
