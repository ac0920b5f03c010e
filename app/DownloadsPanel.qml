import QtQuick
import QtQuick.Templates as T
import Lumaro.App
import Lumaro.Download
import Lumaro.Ui

// The downloads, hanging below the button that is its parent: start one, follow them, and where
// they go.
T.Popup {
    id: root

    required property DownloadsModel downloads

    readonly property FocusReturn before: FocusReturn {}

    x: parent.width - width
    y: parent.height + Theme.spacing * 2
    width: 380
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: Theme.spacing * 4
    margins: Theme.spacing * 2
    focus: true
    visible: downloads.panelShown
    // Closing on Escape by itself would block the application's shortcuts meanwhile.
    closePolicy: T.Popup.CloseOnPressOutsideParent
    onAboutToShow: before.remember(contentItem)
    onClosed: {
        before.giveBack(contentItem);
        downloads.panelShown = false;
    }

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.durationShort }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; to: 0; duration: Theme.durationShort }
    }

    contentItem: FocusScope {
        implicitHeight: column.implicitHeight
        focus: true

        Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape
        Keys.onEscapePressed: root.close()

        Accessible.role: Accessible.Dialog
        Accessible.name: heading.text

        Column {
            id: column

            width: parent.width
            spacing: Theme.spacing * 3

            Text {
                id: heading

                text: qsTr("Downloads")
                textFormat: Text.PlainText
                color: Theme.text
                font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
            }
            Button {
                width: parent.width
                primary: true
                focus: true
                enabled: root.downloads.canDownloadStream
                iconName: "download"
                text: qsTr("Download This Stream")
                shortcutText: "Ctrl+Shift+D"
                onClicked: root.downloads.downloadStream()
            }
            Item {
                width: parent.width
                height: Math.max(error.implicitHeight, dismiss.height)
                visible: error.text !== ""

                ErrorLine {
                    id: error

                    anchors {
                        left: parent.left; right: dismiss.left
                        rightMargin: Theme.spacing * 2
                        verticalCenter: parent.verticalCenter
                    }
                    text: root.downloads.manager.errorMessage
                }
                IconButton {
                    id: dismiss

                    anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                    iconName: "close"
                    text: qsTr("Dismiss")
                    onClicked: root.downloads.manager.dismissError()
                }
            }
            DownloadList {
                width: parent.width
                // A low window has to show the rest of the panel too.
                maximumHeight: Math.max(64, Math.min(336, (T.Overlay.overlay?.height ?? 700) - Theme.roomFor(270, 7)))
                visible: count > 0
                model: root.downloads.list
                manager: root.downloads.manager
            }
            Text {
                width: parent.width
                visible: root.downloads.list.count === 0
                text: qsTr("No downloads yet. An HLS stream that plays can be saved from here.")
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                lineHeight: 1.3
                color: Theme.textSecondary
                font.pixelSize: Theme.fontSmall
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.stroke
            }
            Item {
                width: parent.width
                height: change.height

                Icon {
                    id: folderIcon

                    anchors.verticalCenter: parent.verticalCenter
                    name: "open"
                    size: 16
                    color: Theme.textSecondary
                }
                Text {
                    anchors {
                        left: folderIcon.right; right: change.left
                        leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 2
                        verticalCenter: parent.verticalCenter
                    }
                    text: root.downloads.saveFolderPath
                    textFormat: Text.PlainText
                    elide: Text.ElideMiddle
                    color: Theme.textSecondary
                    font.pixelSize: Theme.fontSmall
                    Accessible.role: Accessible.StaticText
                    Accessible.name: qsTr("Save Folder")
                    Accessible.description: text
                }
                TextButton {
                    id: change

                    anchors { right: parent.right; rightMargin: -Theme.spacing * 2 }
                    text: qsTr("Save Folder…")
                    onClicked: root.downloads.manager.chooseSaveFolder()
                }
            }
        }
    }
    background: Item {
        Shadow { anchors.fill: parent; radius: Theme.radiusLarge }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusLarge
            color: Theme.surfaceRaised
            border { width: 1; color: Theme.stroke }
        }
    }
}
