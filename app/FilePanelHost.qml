import QtQuick
import QtQuick.Templates as T
import Lumaro.App
import Lumaro.Ui

// Shows the panel that is asked for while its window is in front. Each dialog is loaded with its first request: start-up must
// not wait for it.
Item {
    id: host

    required property QuickFilePanels panels
    required property bool isInFront
    property bool showsPanel: false

    readonly property list<Loader> loaders: [fileLoader, saveLoader, textLoader, folderLoader]

    function loaderFor(kind: int): Loader {
        switch (kind) {
        case QuickFilePanels.NewFile: return saveLoader;
        case QuickFilePanels.NewFileAndText: return textLoader;
        case QuickFilePanels.Folder: return folderLoader;
        default: return fileLoader;
        }
    }

    Connections {
        target: host.panels

        function onOpenRequested() {
            host.showsPanel = host.isInFront;
            if (!host.showsPanel)
                return;
            const loader = host.loaderFor(host.panels.kind);
            if (loader.status === Loader.Null)
                loader.setSource(loader.panel, loader.properties);
            loader.item.open();
        }
        function onReplacingAsked() {
            if (!host.showsPanel)
                return;
            replacing.active = true;
            const dialog = replacing.item as Dialog;
            dialog.text = qsTr("“%1” exists already. Replacing it loses what is in it.")
                .arg(host.panels.proposedName);
            dialog.open();
        }
        function onWithdrawn() {
            // Qt 6.4 throws where a list of objects is walked by "of".
            for (let i = 0; i < host.loaders.length; ++i)
                host.loaders[i].item?.close();
            (replacing.item as Dialog)?.close();
        }
    }

    Loader {
        id: fileLoader

        readonly property string panel: "FilePanel.qml"
        readonly property var properties: ({ "panels": host.panels })
    }
    Loader {
        id: saveLoader

        readonly property string panel: "SaveFilePanel.qml"
        readonly property var properties: ({ "panels": host.panels, "overlay": T.Overlay.overlay })
    }
    Loader {
        id: textLoader

        readonly property string panel: "TextSavePanel.qml"
        readonly property var properties: ({ "panels": host.panels })
    }
    Loader {
        id: folderLoader

        readonly property string panel: "FolderPanel.qml"
        readonly property var properties: ({ "panels": host.panels })
    }
    Loader {
        id: replacing

        active: false
        sourceComponent: Dialog {
            property bool isAgreed: false

            title: qsTr("Replace File?")
            acceptText: qsTr("Replace")
            destructive: true
            onAboutToShow: isAgreed = false
            onAccepted: isAgreed = true
            onRejected: isAgreed = false
            onClosed: isAgreed ? host.panels.replace() : host.panels.chooseAnother()
        }
    }
}
