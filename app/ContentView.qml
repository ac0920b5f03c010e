import QtQuick
import Lumaro.App
import Lumaro.Display
import Lumaro.Platform.Mpv
import Lumaro.Playlist
import Lumaro.Ui

// Everything inside the main window: the picture, and around and over it the sidebar, the
// controls and the notices.
FocusScope {
    id: root

    required property PlayerModel player
    required property MainWindowModel shell
    required property TransportModel transport
    required property MenuCommands commands
    required property DownloadsModel downloads
    required property ChannelListModel channels
    required property LocalM3UModel library
    required property LocalM3UCommands libraryCommands
    required property RecordingModel recording
    required property NotificationCenter notifications
    required property MpvMediaPlayer mediaPlayer
    required property PlayerViewServices viewServices
    required property Item picture
    required property WebPlayers webPlayers
    required property string webPlayerFolder
    required property string webPlayerCacheFolder

    function holdsFocus(part: Item): bool {
        let item = Window.activeFocusItem;
        while (item && item !== part)
            item = item.parent;
        return item !== null;
    }

    // What the controls need side by side. A window manager may give less.
    readonly property real leastStageWidth: Math.max(topBar.leastWidth, controlBar.leastWidth + Theme.spacing * 8)
    readonly property real leastSidebarWidth: Theme.roomFor(280, 10)
    readonly property real leastWidth: (sidebar.visible ? leastSidebarWidth : 0) + leastStageWidth

    Item {
        id: stage

        anchors {
            fill: parent
            leftMargin: sidebar.visible ? sidebar.width : 0
        }
        clip: true

        PlayerLayerView {
            id: surface

            anchors.fill: parent
            focus: true
            // The first step into controls that have faded brings them back.
            Keys.onPressed: event => {
                if (event.key !== Qt.Key_Tab && event.key !== Qt.Key_Backtab)
                    return;
                event.accepted = !root.shell.controlsVisible;
                root.shell.showFullScreenControls();
            }
            services: root.viewServices
            player: root.mediaPlayer
            picture: root.picture
            displayMode: root.shell.displayMode
            fillScreen: root.shell.isFullScreen
            HoverHandler {
                cursorShape: root.shell.cursorHidden ? Qt.BlankCursor
                           : !surface.pannable ? Qt.ArrowCursor
                           : surface.dragging ? Qt.ClosedHandCursor : Qt.OpenHandCursor
            }
            Connections {
                target: root.shell

                function onPanRequested(amount: real) {
                    surface.panBy(amount);
                }
            }
            recordable: !root.webPlayers.wantsPage
            onFullScreenToggleRequested: root.shell.isFullScreen = !root.shell.isFullScreen
        }

        // In place of the picture. It needs the browser's engine, so it is made when that is there.
        Loader {
            id: webPlayer

            readonly property bool canBeMade: root.webPlayers.hasEngine

            anchors.fill: parent
            onCanBeMadeChanged: {
                if (!canBeMade) {
                    source = "";
                    return;
                }
                setSource("WebPlayer.qml", {
                    webPlayers: root.webPlayers,
                    shell: root.shell,
                    folder: root.webPlayerFolder,
                    cacheFolder: root.webPlayerCacheFolder
                });
            }
            // Later: this may be told while canBeMade is changing, which it then could not undo.
            onStatusChanged: {
                if (status === Loader.Error)
                    Qt.callLater(() => root.webPlayers.failToShow());
            }
        }

        // A page brings its own pointer. The window looks for the one that counts when an item gets
        // one or loses its own, not when an item with one appears.
        MouseArea {
            anchors.fill: webPlayer
            visible: root.shell.cursorHidden && root.webPlayers.wantsPage
            acceptedButtons: Qt.NoButton
            cursorShape: visible ? Qt.BlankCursor : undefined
        }

        PictureStatus {
            anchors.fill: parent
            player: root.player
            shell: root.shell
            webPlayers: root.webPlayers
        }

        TopBar {
            id: topBar

            anchors { left: parent.left; right: parent.right; top: parent.top }
            shown: root.shell.controlsVisible
            player: root.player
            shell: root.shell
            commands: root.commands
            libraryCommands: root.libraryCommands
            downloads: root.downloads
        }

        ControlBar {
            id: controlBar

            anchors {
                bottom: parent.bottom
                // Above the controls that a site's own player has at its edge.
                bottomMargin: Theme.spacing * (root.webPlayers.wantsPage ? 16 : 4)
                horizontalCenter: parent.horizontalCenter
            }
            width: Math.min(parent.width - Theme.spacing * 8, Math.max(760, leastWidth))
            shown: root.shell.controlsVisible
            player: root.player
            shell: root.shell
            transport: root.transport

            RecordButton {
                id: recordButton

                recording: root.recording
            }
            DisplayModeButton {
                id: displayModeButton

                objectName: "displayModeButton"
                choices: root.commands.displayModes
                obstacle: root.player.showsWebContent ? qsTr("Display modes are for files and streams.") : ""
            }
            IconButton {
                onOverlay: true
                iconName: "star"
                checked: root.library.isCurrentSaved
                enabled: root.library.canSaveCurrent || obstacle !== ""
                obstacle: root.player.showsWebContent ? qsTr("Local M3U is for files and streams.") : ""
                text: root.library.isCurrentSaved ? qsTr("Show in Local M3U") : qsTr("Save to Local M3U")
                shortcutText: "Ctrl+D"
                onClicked: root.library.saveCurrent()
            }
        }

        Column {
            anchors {
                top: topBar.bottom
                topMargin: Theme.spacing * 2
                horizontalCenter: parent.horizontalCenter
            }
            width: Math.min(parent.width - Theme.spacing * 8, 480)
            spacing: Theme.spacing * 2

            Loader {
                readonly property bool shown: root.shell.pictureError !== ""

                width: parent.width
                // Made and announced once, however often it comes back.
                active: root.player.errorMessage !== "" && (shown || item)
                opacity: shown ? 1 : 0
                visible: opacity > 0
                Behavior on opacity { NumberAnimation { duration: Theme.durationShort } }
                sourceComponent: PictureError {
                    objectName: "pictureError"
                    text: root.player.errorMessage
                    onDismissed: root.player.dismissError()
                }
            }
            Loader {
                width: parent.width
                active: root.recording.notice !== ""
                visible: active
                sourceComponent: RecordingNotice { recording: root.recording }
            }
        }

        Toast {
            anchors {
                bottom: controlBar.top
                bottomMargin: Theme.spacing * 4
                horizontalCenter: parent.horizontalCenter
            }
            text: root.player.toastMessage
        }
    }

    Sidebar {
        id: sidebar

        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
        width: Math.min(Theme.roomFor(340, 10), Math.max(root.leastSidebarWidth, root.width - root.leastStageWidth), root.width * 0.45)
        visible: root.shell.sidebarShown
        player: root.player
        shell: root.shell
        channels: root.channels
        library: root.library
        onDismissed: surface.forceActiveFocus()
        // Keys must not go on typing into a field that nobody sees.
        onVisibleChanged: if (!visible && activeFocus) surface.forceActiveFocus()
    }

    Binding {
        target: root.shell
        property: "controlsInUse"
        value: controlBar.inUse || displayModeButton.opened || recordButton.opened || topBar.inUse || root.holdsFocus(controlBar) || root.holdsFocus(topBar)
    }

    // Keys must not go to a page that is gone.
    Connections {
        target: root.webPlayers

        function onChanged() {
            if (!root.webPlayers.wantsPage && root.holdsFocus(webPlayer))
                surface.forceActiveFocus();
        }
    }

    // A click on the picture ends typing, so that the keys are the player's again.
    Connections {
        target: root.notifications

        function onPosted(name: string) {
            if (name === "Lumaro.playerSurfaceClicked")
                surface.forceActiveFocus();
        }
    }

    HoverHandler { cursorShape: root.shell.cursorHidden ? Qt.BlankCursor : Qt.ArrowCursor }

    Shortcut {
        sequence: "Escape"
        enabled: root.shell.isFullScreen
        onActivated: root.shell.isFullScreen = false
    }
    Shortcut {
        sequence: "F"
        onActivated: root.shell.isFullScreen = !root.shell.isFullScreen
    }

    DropArea {
        id: dropArea

        // The library takes what is dropped on it.
        anchors {
            fill: parent
            leftMargin: sidebar.visible && root.shell.showsLocalM3U ? sidebar.width : 0
        }
        onDropped: drop => {
            if (root.shell.openDropped(drop.urls, drop.hasText ? drop.text : ""))
                drop.accept(Qt.CopyAction);
        }
    }

    LocalM3UDialogs { library: root.library }

    Rectangle {
        anchors.fill: dropArea
        anchors.margins: Theme.spacing * 2
        visible: dropArea.containsDrag
        radius: Theme.radiusLarge
        color: Theme.overlay
        border { width: 2; color: Theme.accent }

        EmptyState {
            anchors.centerIn: parent
            onOverlay: true
            iconName: "open"
            title: qsTr("Drop to play")
        }
    }
}
