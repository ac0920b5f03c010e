import QtQuick
import Lumaro.App
import Lumaro.Finder
import Lumaro.Platform.Mpv
import Lumaro.Playlist
import Lumaro.Ui

// The main window: hands the models to its content and follows the full-screen state.
Window {
    id: window

    required property PlayerModel player
    required property MpvMediaPlayer mediaPlayer
    required property MainWindowModel shell
    required property TransportModel transport
    required property MenuCommands commands
    required property DownloadsModel downloads
    required property ChannelListModel channels
    required property LocalM3UModel library
    required property LocalM3UCommands libraryCommands
    required property QuickFilePanels panels
    required property RecordingModel recording
    required property NotificationCenter notifications
    required property SnifferWindowController finderController
    required property PlayerViewServices viewServices
    required property RemoteControl remote
    required property RecentItems recent
    required property HelpModel help
    required property WebPlayers webPlayers
    required property string webPlayerFolder
    required property string webPlayerCacheFolder

    width: 1120
    height: 700
    minimumWidth: Math.max(560, content.leastWidth)
    minimumHeight: Theme.roomFor(360, 10)
    visible: true
    color: "black"
    title: player.title

    // For what Qt draws itself: the file panels of a desktop that has none.
    palette {
        window: Theme.surface
        windowText: Theme.text
        base: Theme.background
        text: Theme.text
        placeholderText: Theme.textSecondary
        button: Theme.surfaceRaised
        buttonText: Theme.text
        light: Theme.surface
        midlight: Theme.fillPressed
        mid: Theme.stroke
        dark: Theme.textSecondary
        shadow: "black"
        highlight: Theme.accent
        highlightedText: Theme.onAccent
        brightText: Theme.text
    }

    Connections {
        target: window.shell

        function onIsFullScreenChanged() {
            if (window.shell.isFullScreen === (window.visibility === Window.FullScreen))
                return;
            if (window.shell.isFullScreen)
                window.showFullScreen();
            else if (window.shell.wasMaximized)
                window.showMaximized();
            else
                window.showNormal();
        }
    }

    ContentView {
        id: content

        anchors.fill: parent
        focus: true
        player: window.player
        shell: window.shell
        transport: window.transport
        commands: window.commands
        downloads: window.downloads
        channels: window.channels
        library: window.library
        libraryCommands: window.libraryCommands
        recording: window.recording
        notifications: window.notifications
        mediaPlayer: window.mediaPlayer
        viewServices: window.viewServices
        webPlayers: window.webPlayers
        webPlayerFolder: window.webPlayerFolder
        webPlayerCacheFolder: window.webPlayerCacheFolder
        picture: MpvVideoItem { player: window.mediaPlayer }
    }

    Loader {
        active: window.recording.controller.recordingPanelShown
        sourceComponent: RecordingPanel {
            recording: window.recording
            transientParent: window
            visible: true
        }
    }

    HelpDialogs {
        commands: window.commands
        help: window.help
    }
    MissingFileDialog { recent: window.recent }
    MediaKeys { remote: window.remote }

    FilePanelHost {
        panels: window.panels
        isInFront: !window.finderController.isShown
    }
}
