import QtQuick
import Lumaro.App
import Lumaro.Ui

// Opens the downloads, and shows how many run.
IconButton {
    id: root

    required property DownloadsModel downloads

    onOverlay: true
    iconName: "download"
    checked: downloads.panelShown
    text: qsTr("Downloads")
    shortcutText: "Ctrl+J"
    onClicked: downloads.panelShown = !downloads.panelShown
    Accessible.description: badge.visible ? qsTr("%n running", "", downloads.list.activeCount) : ""

    Connections {
        target: root.downloads

        function onPanelShownChanged() {
            if (root.downloads.panelShown)
                panel.active = true;
        }
    }

    Rectangle {
        id: badge

        anchors { right: parent.right; top: parent.top }
        width: Math.max(height, badgeText.implicitWidth + 8)
        height: Theme.roomFor(16, 1)
        radius: height / 2
        visible: root.downloads.list.activeCount > 0
        color: Theme.accent

        Text {
            id: badgeText

            anchors.centerIn: parent
            text: root.downloads.list.activeCount
            textFormat: Text.PlainText
            color: Theme.onAccent
            font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
        }
    }

    Loader {
        id: panel

        active: false
        sourceComponent: DownloadsPanel {
            parent: root
            downloads: root.downloads
        }
    }
}
