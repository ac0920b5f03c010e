import QtQuick.Dialogs
import Lumaro.App

// The platform's panel for choosing one file.
FileDialog {
    required property QuickFilePanels panels

    title: panels.title
    acceptLabel: panels.prompt
    nameFilters: panels.nameFilters
    fileMode: FileDialog.OpenFile
    onAccepted: panels.accept(selectedFile)
    onRejected: panels.reject()
}
