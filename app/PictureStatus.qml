import QtQuick
import Lumaro.App
import Lumaro.Ui

// What stands over the picture in place of it or above it: the welcome, the one calm sentence,
// waiting and loading.
Item {
    id: root

    required property PlayerModel player
    required property MainWindowModel shell
    required property WebPlayers webPlayers

    readonly property bool isIdle: player.currentURL.toString() === "" && shell.pictureNotice === "" && !player.showsWebContent
    readonly property bool isOpening: shell.isOpening || webPlayers.isLoading

    Loader {
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.spacing * 12, 420)
        active: root.isIdle && !root.player.isLoading
        sourceComponent: EmptyState {
            onOverlay: true
            iconName: "film"
            title: qsTr("Nothing is playing")
            text: qsTr("Open a file, paste an address, or drop either of them here.")
            buttonText: qsTr("Open Media…")
            onButtonClicked: root.shell.openFile()
        }
    }

    Loader {
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.spacing * 12, 420)
        active: root.shell.pictureNotice !== ""
        sourceComponent: EmptyState {
            onOverlay: true
            iconName: "alert"
            title: root.player.itemTitle
            text: root.shell.pictureNotice
        }
    }

    Loader {
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.spacing * 12, 420)
        active: root.webPlayers.failure !== ""
        sourceComponent: EmptyState {
            objectName: "webPlayerFailure"
            onOverlay: true
            iconName: "alert"
            title: root.player.itemTitle
            text: root.webPlayers.failure
            buttonText: qsTr("Retry")
            onButtonClicked: root.webPlayers.retry()
        }
    }

    Loader {
        anchors.centerIn: parent
        active: root.player.isBuffering || root.isOpening || (root.player.isLoading && root.isIdle)
        sourceComponent: Column {
            spacing: Theme.spacing * 3

            BusyIndicator {
                anchors.horizontalCenter: parent.horizontalCenter
                onOverlay: true
                running: true
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: root.player.isBuffering ? qsTr("Buffering…") : root.isOpening ? qsTr("Opening…") : qsTr("Loading playlist…")
                color: Theme.textOnOverlay
                font.pixelSize: Theme.fontBody
            }
        }
    }
}
