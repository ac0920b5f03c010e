import QtQuick
import Lumaro.App
import Lumaro.Ui

// A recently opened file is not there any more; shall it be forgotten?
Item {
    id: root

    required property RecentItems recent

    Loader {
        id: loader

        active: false
        sourceComponent: Dialog {
            title: qsTr("File Not Found")
            acceptText: qsTr("Remove from Recent")
            cancelText: qsTr("Keep")
            onAccepted: root.recent.removeMissing()
            onRejected: root.recent.keepMissing()
        }
    }
    Connections {
        target: root.recent

        function onMissingFileChanged() {
            if (root.recent.missingFile === "")
                return;
            loader.active = true;
            const dialog = loader.item as Dialog;
            // It stays readable while the dialog fades.
            dialog.text = qsTr("This file is not where it was. It may have been moved, renamed or deleted, or its disk is not connected.\n") + root.recent.missingFile;
            dialog.open();
        }
    }
}
