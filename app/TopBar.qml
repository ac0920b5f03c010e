pragma ComponentBehavior: Bound

import QtQuick
import Lumaro.App
import Lumaro.Ui

// The window's upper edge over the picture: the sidebar's switch, the menus and the title.
Item {
    id: root

    required property PlayerModel player
    required property MainWindowModel shell
    required property MenuCommands commands
    required property LocalM3UCommands libraryCommands
    required property DownloadsModel downloads
    property bool shown: true

    readonly property bool inUse: hover.hovered || openMenus > 0 || downloads.panelShown
    property int openMenus: 0
    // Without a title.
    readonly property real leastWidth: leading.implicitWidth + finderButton.width + downloadsButton.width + Theme.spacing * 9

    implicitHeight: Theme.roomFor(56, 1)
    opacity: shown ? 1 : 0
    visible: opacity > 0
    Behavior on opacity { NumberAnimation { duration: Theme.durationShort } }

    // Keeps the text readable on a bright picture.
    Rectangle {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: 96
        gradient: Gradient {
            GradientStop { position: 0; color: "#b0000000" }
            GradientStop { position: 1; color: "transparent" }
        }
    }

    Item {
        anchors.fill: parent

        HoverHandler { id: hover }

        Row {
            id: leading

            anchors {
                left: parent.left; leftMargin: Theme.spacing * 3
                verticalCenter: parent.verticalCenter
            }
            spacing: Theme.spacing

            IconButton {
                visible: !root.shell.isFullScreen
                onOverlay: true
                iconName: "sidebar"
                checked: root.shell.sidebarVisible
                text: root.shell.sidebarVisible ? qsTr("Hide Sidebar") : qsTr("Show Sidebar")
                shortcutText: "Ctrl+B"
                onClicked: root.shell.toggleSidebar()
            }
            MenuButton {
                title: qsTr("File")
                commands: root.commands.file
                onOpenedChanged: root.openMenus += opened ? 1 : -1
            }
            MenuButton {
                title: qsTr("Playback")
                commands: root.commands.playback
                onOpenedChanged: root.openMenus += opened ? 1 : -1
            }
            MenuButton {
                title: qsTr("Library")
                commands: root.libraryCommands.all
                onOpenedChanged: root.openMenus += opened ? 1 : -1
            }
            MenuButton {
                title: qsTr("View")
                commands: root.commands.view
                onOpenedChanged: root.openMenus += opened ? 1 : -1
            }
            MenuButton {
                title: qsTr("Help")
                commands: root.commands.help
                onOpenedChanged: root.openMenus += opened ? 1 : -1
            }
        }

        Text {
            anchors {
                left: leading.right; right: finderButton.left
                leftMargin: Theme.spacing * 4; rightMargin: Theme.spacing * 3
                verticalCenter: parent.verticalCenter
            }
            horizontalAlignment: Text.AlignRight
            elide: Text.ElideMiddle
            text: root.player.title
            textFormat: Text.PlainText
            color: Theme.textOnOverlay
            font { pixelSize: Theme.fontBody; weight: Font.Medium }
        }

        IconButton {
            id: finderButton

            anchors {
                right: downloadsButton.left; rightMargin: Theme.spacing
                verticalCenter: parent.verticalCenter
            }
            onOverlay: true
            iconName: "globe"
            text: qsTr("Find Streams in Web Pages")
            shortcutText: "Ctrl+Shift+F"
            onClicked: root.commands.finderRequested()
        }
        DownloadsButton {
            id: downloadsButton

            anchors {
                right: parent.right; rightMargin: Theme.spacing * 3
                verticalCenter: parent.verticalCenter
            }
            downloads: root.downloads
        }
    }
}
