import QtQuick
import Lumaro.App

// Shows the panel that is asked for. Each dialog is loaded with its first request: start-up must
// not wait for it.
Item {
    id: host

    required property QuickFilePanels panels

    Connections {
        target: host.panels

        function onOpenRequested() {
            const loader = host.panels.isChoosingFolder ? folderLoader : fileLoader;
            if (loader.status === Loader.Null)
                loader.setSource(loader.panel, { "panels": host.panels });
            loader.item.open();
        }
        function onWithdrawn() {
            fileLoader.item?.close();
            folderLoader.item?.close();
        }
    }

    Loader {
        id: fileLoader

        readonly property string panel: "FilePanel.qml"
    }
    Loader {
        id: folderLoader

        readonly property string panel: "FolderPanel.qml"
    }
}
