import QtQuick.Dialogs
import Lumaro.App

// The platform's panel for choosing one folder.
FolderDialog {
    required property QuickFilePanels panels

    title: panels.title
    acceptLabel: panels.prompt
    currentFolder: panels.folder
    onAccepted: panels.accept(selectedFolder)
    onRejected: panels.reject()
}
