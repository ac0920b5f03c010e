import QtQuick
import QtQuick.Dialogs
import QtQuick.Templates as T
import Lumaro.App

// The platform's panel for naming a file to write. Whether it may replace one is asked afterwards,
// in the same words everywhere: not every platform's panel asks.
FileDialog {
    id: panel

    required property QuickFilePanels panels
    // The window's layer for popups, where Qt shows a panel of its own if the desktop has none.
    required property Item overlay

    property bool takesEnter: false

    // Of Qt's own panel; empty for the desktop's.
    function part(matches: var): Item {
        const waiting = [overlay];
        for (let item = waiting.pop(); item; item = waiting.pop()) {
            if (matches(item))
                return item;
            for (let i = 0; i < item.children.length; ++i)
                waiting.push(item.children[i]);
        }
        return null;
    }

    // Qt's own panel begins in its list, and knows no Enter in the name.
    function startInName(): void {
        const field = part(item => item.objectName === "fileNameTextField") as T.TextField;
        const button = part(item => item instanceof T.Button && item.text === acceptLabel) as T.Button;
        if (!field || !button)
            return;
        // It forgets the name when it is shown again.
        field.text = panels.proposedName;
        field.forceActiveFocus(Qt.PopupFocusReason);
        field.select(0, Math.max(0, field.text.lastIndexOf(".")));
        if (!takesEnter)
            field.accepted.connect(() => button.clicked());
        takesEnter = true;
    }

    title: panels.title
    acceptLabel: panels.prompt
    nameFilters: panels.nameFilters
    defaultSuffix: panels.defaultSuffix
    fileMode: FileDialog.SaveFile
    options: FileDialog.DontConfirmOverwrite
    currentFolder: panels.folder
    selectedFile: panels.proposedFile
    onVisibleChanged: {
        if (visible)
            Qt.callLater(startInName);
    }
    onAccepted: panels.accept(selectedFile)
    onRejected: panels.reject()
}
