import QtQuick
import Lumaro.App
import Lumaro.Playlist
import Lumaro.Ui

// The address field with its optional name, the error line, and the channels of the playlist.
FocusScope {
    id: root

    required property PlayerModel player
    required property MainWindowModel shell
    required property ChannelListModel channels
    required property LocalM3UModel library
    signal dismissed()

    // What is no address is to be mended.
    function openTyped(): void {
        if (shell.openTypedAddress())
            dismissed();
        else
            addressField.forceActiveFocus(Qt.OtherFocusReason);
    }

    // Keys must not go on typing into a field that nobody sees.
    onVisibleChanged: if (!visible && activeFocus) dismissed()

    Column {
        id: form

        anchors {
            left: parent.left; right: parent.right; top: parent.top
            leftMargin: Theme.spacing * 3; rightMargin: Theme.spacing * 3
        }
        spacing: Theme.spacing * 2

        TextField {
            id: addressField

            width: parent.width
            iconName: "link"
            placeholderText: qsTr("Stream or playlist address")
            text: root.shell.addressText
            onTextEdited: root.shell.addressText = text
            onCleared: root.shell.addressText = ""
            onAccepted: root.openTyped()
            Keys.onEscapePressed: root.dismissed()
            Accessible.name: qsTr("Stream or playlist address")
        }

        TextField {
            width: parent.width
            visible: root.shell.displayNameShown
            onVisibleChanged: if (!visible && activeFocus) root.dismissed()
            iconName: "edit"
            placeholderText: qsTr("Movie or playlist name")
            text: root.shell.displayName
            onTextEdited: root.shell.displayName = text
            onCleared: root.shell.displayName = ""
            onAccepted: root.openTyped()
            Keys.onEscapePressed: root.dismissed()
            Accessible.name: qsTr("Movie or playlist name")
        }

        Item {
            width: parent.width
            height: actions.implicitHeight

            Row {
                id: actions

                spacing: Theme.spacing

                IconButton {
                    iconName: root.shell.displayNameShown ? "chevron-down" : "plus"
                    text: root.shell.displayNameShown ? qsTr("Hide movie or playlist name")
                                                      : qsTr("Add an optional movie or playlist name")
                    onClicked: root.shell.displayNameShown = !root.shell.displayNameShown
                }
                IconButton {
                    iconName: "import"
                    text: qsTr("Import M3U Playlist…")
                    shortcutText: "Ctrl+I"
                    onClicked: root.shell.importPlaylist()
                }
                IconButton {
                    iconName: "trash"
                    text: qsTr("Clear address, channels and stream")
                    enabled: root.shell.canClearNetwork
                    onClicked: root.shell.clearNetwork()
                }
            }
            BusyIndicator {
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                size: 20
                running: root.player.isLoading
                visible: running
            }
        }

        ErrorLine {
            width: parent.width
            visible: text !== ""
            text: root.player.errorMessage
        }
    }

    ChannelListView {
        id: list

        anchors {
            left: parent.left; right: parent.right
            top: form.bottom; bottom: parent.bottom
            topMargin: Theme.spacing * 2
        }
        visible: root.channels.count > 0
        channels: root.channels
        onChannelActivated: index => root.shell.playChannel(index)
        onChannelSaved: index => root.library.saveToLocalM3U(index)
        onMenuRequested: (index, x, y) => channelMenu.popup(index, x, y)
        onDismissed: root.dismissed()
    }

    Item {
        anchors { left: parent.left; right: parent.right; top: form.bottom; bottom: parent.bottom }
        visible: root.channels.count === 0 && !root.player.isLoading

        EmptyState {
            anchors {
                left: parent.left; right: parent.right
                verticalCenter: parent.verticalCenter
                margins: Theme.spacing * 6
            }
            iconName: "tv"
            title: qsTr("No channels")
            text: qsTr("Paste the address of an IPTV playlist, or import an M3U file.")
        }
    }

    Loader {
        id: channelMenu

        property int channel: -1

        function popup(index: int, x: real, y: real): void {
            channel = index;
            active = true;
            (item as Menu).popup(root, x, y);
        }

        active: false
        // Another channel may have the number then.
        Connections {
            target: root.channels
            function onModelReset() { (channelMenu.item as Menu)?.close(); }
        }
        sourceComponent: Menu {
            MenuItem {
                text: qsTr("Play")
                iconName: "play"
                shortcutText: "Enter"
                onTriggered: root.shell.playChannel(channelMenu.channel)
            }
            MenuItem {
                text: qsTr("Save to Local M3U")
                iconName: "star"
                shortcutText: "Ctrl+S"
                onTriggered: root.library.saveToLocalM3U(channelMenu.channel)
            }
        }
    }

    Connections {
        target: root.shell

        function onAddressFieldRequested() {
            addressField.forceActiveFocus(Qt.ShortcutFocusReason);
            addressField.selectAll();
        }
        function onChannelSearchRequested() {
            if (list.visible)
                list.takeFocus();
        }
    }
}
