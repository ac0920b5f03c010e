pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Finder
import Lumaro.Ui

// Saved and visited websites.
Item {
    id: root

    required property SnifferWebListModel webList
    // The user picked a website, for the tab there is or for a new one.
    signal websiteActivated(string address, bool inNewTab)

    SegmentedControl {
        id: tabs

        anchors { left: parent.left; right: actions.left; top: parent.top; rightMargin: Theme.spacing * 2 }
        model: root.webList.filterTabs.map(title => ({ "text": title }))
        currentIndex: root.webList.filterTab
        name: qsTr("Websites")
        onActivated: index => root.webList.filterTab = index
    }
    Row {
        id: actions

        anchors { right: parent.right; verticalCenter: tabs.verticalCenter }

        IconButton { iconName: "import"; text: qsTr("Import Web List"); onClicked: root.webList.importWebsites() }
        IconButton { iconName: "export"; text: qsTr("Export Web List"); onClicked: root.webList.exportWebsites() }
        IconButton {
            iconName: "trash"
            text: root.webList.clearTitle.replace("?", "")
            enabled: root.webList.canClear
            onClicked: clearing.active = true
        }
    }
    TextField {
        id: search

        anchors { left: parent.left; right: parent.right; top: tabs.bottom; topMargin: Theme.spacing * 2 }
        iconName: "search"
        placeholderText: root.webList.searchPlaceholder
        text: root.webList.searchText
        onTextEdited: root.webList.searchText = text
        onCleared: root.webList.searchText = ""
        Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
        Accessible.name: root.webList.searchPlaceholder
    }

    ListView {
        id: list

        anchors {
            left: parent.left; right: parent.right; top: search.bottom; bottom: parent.bottom
            topMargin: Theme.spacing * 2
        }
        clip: true
        model: root.webList
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        activeFocusOnTab: true
        highlightFollowsCurrentItem: false
        T.ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: root.webList.filterTabs[root.webList.filterTab]

        Keys.onReturnPressed: event => activateCurrent((event.modifiers & Qt.ControlModifier) !== 0)
        Keys.onEnterPressed: event => activateCurrent((event.modifiers & Qt.ControlModifier) !== 0)
        Keys.onDeletePressed: root.webList.remove(currentIndex)

        function activateCurrent(inNewTab: bool): void {
            const address = root.webList.addressAt(currentIndex);
            if (address !== "")
                root.websiteActivated(address, inNewTab);
        }

        delegate: T.AbstractButton {
            id: row

            required property int index
            required property string title
            required property string address
            required property bool isFavorite
            required property string visits

            width: ListView.view.width
            height: Theme.roomFor(52, 2)
            hoverEnabled: true
            focusPolicy: Qt.NoFocus
            onClicked: root.websiteActivated(address, false)
            Accessible.role: Accessible.ListItem
            Accessible.name: title
            Accessible.description: address
            Accessible.onPressAction: root.websiteActivated(address, false)

            TapHandler {
                acceptedButtons: Qt.MiddleButton
                onTapped: root.websiteActivated(row.address, true)
            }
            background: Rectangle {
                radius: Theme.radius
                color: row.down ? Theme.fillPressed
                     : row.ListView.isCurrentItem && list.activeFocus ? Theme.accentSoft
                     : row.hovered ? Theme.fillHover : "transparent"
            }
            contentItem: Item {
                Column {
                    anchors {
                        left: parent.left; right: buttons.left; verticalCenter: parent.verticalCenter
                        leftMargin: Theme.spacing * 3; rightMargin: Theme.spacing * 2
                    }
                    spacing: 2

                    Text {
                        width: parent.width
                        text: row.title
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        maximumLineCount: 1
                        color: Theme.text
                        font { pixelSize: Theme.fontBody; weight: Font.Medium }
                    }
                    Text {
                        width: parent.width
                        text: row.visits === "" ? row.address : row.address + " · " + row.visits
                        textFormat: Text.PlainText
                        elide: Text.ElideMiddle
                        maximumLineCount: 1
                        color: Theme.textSecondary
                        font.pixelSize: Theme.fontSmall
                    }
                }
                Row {
                    id: buttons

                    anchors { right: parent.right; rightMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }

                    IconButton {
                        iconName: "star"
                        iconSize: 16
                        checked: row.isFavorite
                        text: row.isFavorite ? qsTr("Remove from Saved") : qsTr("Save")
                        onClicked: root.webList.toggleFavorite(row.index)
                    }
                    IconButton {
                        iconName: "plus"
                        iconSize: 16
                        text: qsTr("Open in New Tab")
                        onClicked: root.websiteActivated(row.address, true)
                    }
                    IconButton {
                        iconName: "close"
                        iconSize: 14
                        text: qsTr("Remove")
                        onClicked: root.webList.remove(row.index)
                    }
                }
            }
        }
    }
    EmptyState {
        anchors { horizontalCenter: list.horizontalCenter; verticalCenter: list.verticalCenter }
        width: Math.min(parent.width - 32, 320)
        visible: root.webList.emptyTitle !== ""
        iconName: root.webList.searchText !== "" ? "search" : "star"
        title: root.webList.emptyTitle
        text: root.webList.emptyText
    }

    Loader {
        id: clearing

        active: false
        onLoaded: (item as Dialog).open()
        sourceComponent: Dialog {
            title: root.webList.clearTitle
            text: root.webList.clearText
            acceptText: qsTr("Clear")
            destructive: true
            onAccepted: root.webList.clear()
            onClosed: clearing.active = false
        }
    }
}
