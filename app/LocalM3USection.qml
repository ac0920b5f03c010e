import QtQuick
import Lumaro.App
import Lumaro.Playlist
import Lumaro.Ui

// The user's own library of links: what can be done with it, and its list.
Item {
    id: root

    required property LocalM3UModel library
    property bool isLoading: false
    signal dismissed()

    readonly property bool isEmpty: library.list.count === 0 && !library.list.isLoading

    Column {
        id: head

        anchors {
            left: parent.left; right: parent.right; top: parent.top
            leftMargin: Theme.spacing * 3; rightMargin: Theme.spacing * 3
        }
        spacing: Theme.spacing * 2

        Item {
            width: parent.width
            height: actions.implicitHeight

            Row {
                id: actions

                spacing: Theme.spacing

                IconButton {
                    id: addButton

                    iconName: "plus"
                    text: qsTr("Add Link…")
                    shortcutText: "Ctrl+N"
                    onClicked: root.library.add()
                }
                IconButton {
                    iconName: "import"
                    text: qsTr("Import M3U File…")
                    shortcutText: "Ctrl+Shift+I"
                    onClicked: root.library.importLocalPlaylist()
                }
                IconButton {
                    iconName: "export"
                    text: qsTr("Export M3U File…")
                    shortcutText: "Ctrl+Shift+E"
                    onClicked: root.library.exportLocalPlaylistAsM3U()
                }
            }
            Row {
                anchors.right: parent.right
                spacing: Theme.spacing

                BusyIndicator {
                    anchors.verticalCenter: parent.verticalCenter
                    size: 20
                    running: root.isLoading || root.library.list.isLoading
                    visible: running
                }
                IconButton {
                    id: moreButton

                    iconName: "more"
                    text: qsTr("More")
                    onClicked: moreMenu.toggle()
                }
            }
        }

        ErrorLine {
            width: parent.width
            visible: text !== ""
            text: root.library.errorMessage
        }
        Button {
            visible: root.library.isNotStored
            text: qsTr("Try Again")
            onClicked: root.library.tryAgain()
        }
    }

    LocalM3UListView {
        id: list

        anchors {
            left: parent.left; right: parent.right
            top: head.bottom; bottom: parent.bottom
            topMargin: Theme.spacing * 2
        }
        visible: !root.isEmpty
        links: root.library.list
        onPlayed: row => root.library.play(row)
        onEdited: row => root.library.edit(row)
        onDeleted: row => root.library.remove(row)
        onUndone: root.library.history.undo()
        onRedone: root.library.history.redo()
        onMenuRequested: (row, x, y) => linkMenu.popup(row, x, y)
        onDismissed: root.dismissed()
    }

    Item {
        anchors { left: parent.left; right: parent.right; top: head.bottom; bottom: parent.bottom }
        visible: root.isEmpty

        EmptyState {
            anchors {
                left: parent.left; right: parent.right
                verticalCenter: parent.verticalCenter
                margins: Theme.spacing * 6
            }
            iconName: "library"
            title: qsTr("Local M3U")
            text: qsTr("No local M3U8 links yet. Choose an M3U file or click + to add a link.")
            buttonText: qsTr("Choose M3U File…")
            onButtonClicked: root.library.importLocalPlaylist()
        }
    }

    Loader {
        id: linkMenu

        property int row: -1

        function popup(index: int, x: real, y: real): void {
            row = index;
            active = true;
            (item as Menu).popup(root, x, y);
        }
        function close(): void {
            if (item)
                (item as Menu).close();
        }

        active: false
        // Another link may stand in the row then.
        Connections {
            target: root.library.list
            function onRowsInserted() { linkMenu.close(); }
            function onRowsRemoved() { linkMenu.close(); }
            function onDataChanged() { linkMenu.close(); }
            function onModelReset() { linkMenu.close(); }
        }
        sourceComponent: Menu {
            MenuItem {
                text: qsTr("Play")
                iconName: "play"
                shortcutText: "Enter"
                onTriggered: root.library.play(linkMenu.row)
            }
            MenuItem {
                text: qsTr("Edit…")
                iconName: "edit"
                shortcutText: "F2"
                onTriggered: root.library.edit(linkMenu.row)
            }
            MenuItem {
                text: qsTr("Delete…")
                iconName: "trash"
                shortcutText: "Del"
                destructive: true
                startsGroup: true
                onTriggered: root.library.remove(linkMenu.row)
            }
        }
    }

    Loader {
        id: moreMenu

        function toggle(): void {
            active = true;
            (item as Menu).toggleBelow(moreButton);
        }

        active: false
        sourceComponent: Menu {
            MenuItem {
                text: qsTr("Undo")
                shortcutText: "Ctrl+Z"
                enabled: root.library.history.canUndo
                onTriggered: root.library.history.undo()
            }
            MenuItem {
                text: qsTr("Redo")
                shortcutText: "Ctrl+Shift+Z"
                enabled: root.library.history.canRedo
                onTriggered: root.library.history.redo()
            }
            MenuItem {
                text: qsTr("Delete All…")
                iconName: "trash"
                shortcutText: "Ctrl+Shift+Backspace"
                destructive: true
                startsGroup: true
                enabled: root.library.list.count > 0
                onTriggered: root.library.removeAll()
            }
        }
    }

    DropArea {
        id: dropArea

        property int action: LocalM3UModel.NothingDropped

        anchors.fill: parent
        onEntered: drag => action = root.library.dropAction(drag.urls, drag.hasText ? drag.text : "")
        onDropped: drop => {
            if (root.library.drop(drop.urls, drop.hasText ? drop.text : ""))
                drop.accept(Qt.CopyAction);
        }
    }
    Rectangle {
        anchors { fill: parent; margins: Theme.spacing * 2 }
        visible: dropArea.containsDrag && dropArea.action !== LocalM3UModel.NothingDropped
        radius: Theme.radiusLarge
        color: Theme.overlay
        border { width: 2; color: Theme.accent }

        EmptyState {
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
            onOverlay: true
            iconName: dropArea.action === LocalM3UModel.ImportDropped ? "import"
                    : dropArea.action === LocalM3UModel.AddDropped ? "plus" : "open"
            title: dropArea.action === LocalM3UModel.ImportDropped ? qsTr("Drop to import")
                 : dropArea.action === LocalM3UModel.AddDropped ? qsTr("Drop to add")
                 : qsTr("Drop to play")
        }
    }

    Connections {
        target: root.library

        function onFocusRequested() {
            if (root.isEmpty)
                addButton.forceActiveFocus(Qt.TabFocusReason);
            else
                list.takeFocus();
        }
    }
}
