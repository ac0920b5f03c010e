pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Finder
import Lumaro.Ui

// The streams that the selected tab's pages loaded. A click on the header, or + and -, opens and
// closes the list.
Rectangle {
    id: root

    required property SnifferViewModel finder
    property real maximumHeight: 320
    readonly property bool isExpanded: finder.isStreamsExpanded
    readonly property bool isEmpty: finder.streams.count === 0

    implicitHeight: header.height + (isExpanded ? Math.min(maximumHeight - header.height, isEmpty ? 132 : list.contentHeight + 8) : 0)
    color: Theme.surface

    Rectangle {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: 1
        color: Theme.stroke
    }

    T.AbstractButton {
        id: header

        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: Theme.roomFor(44, 1)
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        onClicked: root.finder.isStreamsExpanded = !root.isExpanded
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        Accessible.name: root.finder.streams.header
        Accessible.description: root.finder.toggleHelp
        Accessible.onPressAction: if (enabled) clicked()
        onHoveredChanged: hovered
            ? ToolTips.show(header, root.isExpanded ? qsTr("Click to collapse") : root.finder.toggleHelp, "") : ToolTips.hide(header)

        background: Rectangle {
            color: header.hovered ? Theme.fillHover : "transparent"
            FocusRing { visible: header.visualFocus; around: 0 }
        }
        contentItem: Item {
            Icon {
                id: sign

                anchors { left: parent.left; leftMargin: Theme.spacing * 4; verticalCenter: parent.verticalCenter }
                name: root.isExpanded ? "chevron-down" : "chevron-right"
                size: 16
                color: Theme.textSecondary
            }
            Text {
                id: title

                anchors { left: sign.right; leftMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }
                text: root.finder.streams.header
                textFormat: Text.PlainText
                color: Theme.text
                font { pixelSize: Theme.fontBody; weight: Font.DemiBold }
            }
            Rectangle {
                anchors { left: title.right; leftMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }
                visible: !root.isEmpty
                width: Math.max(height, number.implicitWidth + 12)
                height: Theme.roomFor(20, 1)
                radius: height / 2
                color: Theme.accent

                Text {
                    id: number

                    anchors.centerIn: parent
                    text: root.finder.streams.count
                    color: Theme.onAccent
                    font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
                }
            }
        }
    }
    Row {
        anchors { right: parent.right; rightMargin: Theme.spacing * 2; verticalCenter: header.verticalCenter }

        IconButton {
            iconName: "open"
            text: qsTr("Save Folder…")
            onClicked: root.finder.downloads.chooseSaveFolder()
        }
        IconButton {
            iconName: "library"
            text: root.finder.streams.openLibraryText
            onClicked: root.finder.streams.libraryRequested()
        }
    }

    EmptyState {
        anchors {
            top: header.bottom; bottom: parent.bottom; horizontalCenter: parent.horizontalCenter
            bottomMargin: Theme.spacing * 3
        }
        width: Math.min(parent.width - 64, 480)
        visible: root.isExpanded && root.isEmpty
        title: root.finder.streams.emptyTitle
        text: root.finder.streams.emptyText
    }

    ListView {
        id: list

        anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: parent.bottom; bottomMargin: 8 }
        visible: root.isExpanded && !root.isEmpty
        clip: true
        model: root.finder.streams
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        activeFocusOnTab: true
        highlightFollowsCurrentItem: false
        T.ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: root.finder.streams.header
        Keys.onReturnPressed: root.finder.streams.play(currentIndex)
        Keys.onEnterPressed: root.finder.streams.play(currentIndex)

        delegate: SnifferStreamRow {
            width: ListView.view.width
            isCurrent: ListView.isCurrentItem && list.activeFocus
            onPlayed: root.finder.streams.play(index)
            onDownloaded: root.finder.streams.download(index)
            onStopped: root.finder.streams.stopDownload(index)
            onRevealed: root.finder.streams.revealDownload(index)
            onSaved: root.finder.streams.save(index)
            onCopied: {
                clipboard.text = root.finder.streams.addressAt(index);
                clipboard.selectAll();
                clipboard.copy();
                root.finder.tell(qsTr("Address copied"));
            }
        }
    }
    TextEdit { id: clipboard; visible: false }
}
