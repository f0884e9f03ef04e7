import QtQuick
import QtQuick.Dialogs
import Korvel
import "FileUrls.js" as FileUrls

// Picks one existing file and hands its local path to the callback given to pick().
FileDialog {
    id: picker
    property var callback: null

    title: qsTr("Select File")
    nameFilters: [qsTr("All files (*.*)")]
    fileMode: FileDialog.OpenFile

    function pick(dialogTitle, filters, callback) {
        picker.title = dialogTitle
        picker.nameFilters = filters
        picker.callback = callback
        picker.open()
    }

    onAccepted: {
        if (callback)
            callback(FileUrls.localPath(selectedFile))
        callback = null
    }
    onRejected: callback = null
}
