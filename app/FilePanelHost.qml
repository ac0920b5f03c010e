import QtQuick
import Lumaro.App

// Shows the file panel that is asked for. The dialog is loaded with the first request: start-up
// must not wait for it.
Item {
    id: host

    required property QuickFilePanels panels

    Connections {
        target: host.panels

        function onOpenRequested() {
            if (loader.status === Loader.Null)
                loader.setSource("FilePanel.qml", { "panels": host.panels });
            loader.item.open();
        }
        function onWithdrawn() {
            if (loader.item)
                loader.item.close();
        }
    }

    Loader { id: loader }
}
