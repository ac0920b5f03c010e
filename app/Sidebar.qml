import QtQuick
import Lumaro.App
import Lumaro.Playlist
import Lumaro.Ui

// The panel beside the picture, with its two sections.
FocusScope {
    id: root

    required property PlayerModel player
    required property MainWindowModel shell
    required property ChannelListModel channels
    required property LocalM3UModel library
    // The user is done typing here.
    signal dismissed()

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Rectangle {
        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: 1
        color: Theme.stroke
    }

    SegmentedControl {
        id: sections

        anchors {
            left: parent.left; right: parent.right; top: parent.top
            margins: Theme.spacing * 3
        }
        model: [
            { "text": qsTr("Network"), "iconName": "link" },
            { "text": qsTr("Local M3U"), "iconName": "library" }
        ]
        currentIndex: root.shell.sidebarSection
        name: qsTr("Sections")
        onActivated: index => root.shell.sidebarSection = index
    }

    NetworkSection {
        anchors {
            left: parent.left; right: parent.right
            top: sections.bottom; bottom: parent.bottom
            topMargin: Theme.spacing * 3
        }
        visible: !root.shell.showsLocalM3U
        player: root.player
        shell: root.shell
        channels: root.channels
        library: root.library
        onDismissed: root.dismissed()
    }

    Loader {
        anchors {
            left: parent.left; right: parent.right
            top: sections.bottom; bottom: parent.bottom
            topMargin: Theme.spacing * 3
        }
        visible: root.shell.showsLocalM3U
        onVisibleChanged: if (!visible && activeFocus) root.dismissed()
        // Made when it is first shown.
        active: visible || item
        sourceComponent: LocalM3USection {
            library: root.library
            isLoading: root.player.isLoading
            onDismissed: root.dismissed()
        }
    }
}
