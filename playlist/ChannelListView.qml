pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Playlist
import Lumaro.Ui

// The channels of a playlist under their categories, with a search over them. In the search field
// the arrows, Page Up and Down, and Ctrl+Home and End move through the list, Enter plays or folds, and
// Shift+F10 shows what else can be done.
Item {
    id: root

    required property ChannelListModel channels
    // The user picked the channel at this index of the playlist.
    signal channelActivated(int index)
    // The user wants to keep it.
    signal channelSaved(int index)
    // The user asks what can be done with it, at this place.
    signal menuRequested(int index, real x, real y)
    // The user is done here.
    signal dismissed()

    function takeFocus(): void {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
        search.selectAll();
    }
    function move(step: int): void {
        list.currentIndex = channels.rowAfter(list.currentIndex, step);
        list.positionViewAtIndex(list.currentIndex, ListView.Contain);
        // The focus stays in the search field.
        Announcer.announce(list.currentItem);
    }
    // Answers whether the key is meant for the list.
    function steer(event: KeyEvent): bool {
        const page = Math.max(1, Math.floor(list.height / list.rowHeight) - 1);
        const withControl = event.modifiers === Qt.ControlModifier;
        const withShift = event.modifiers === Qt.ShiftModifier;
        switch (event.key) {
        case Qt.Key_Up: move(-1); return true;
        case Qt.Key_Down: move(1); return true;
        case Qt.Key_PageUp: move(-page); return true;
        case Qt.Key_PageDown: move(page); return true;
        case Qt.Key_Home: if (withControl) move(-list.count); return withControl;
        case Qt.Key_End: if (withControl) move(list.count); return withControl;
        case Qt.Key_F10: if (withShift) askForMenuOfCurrent(); return withShift;
        case Qt.Key_Menu: askForMenuOfCurrent(); return true;
        default: return false;
        }
    }
    function activate(row: int): void {
        const entry = channels.entryAt(row);
        if (entry >= 0)
            channelActivated(entry);
        else
            channels.toggleGroup(row);
    }

    function save(row: int): void {
        if (channels.entryAt(row) >= 0)
            channelSaved(channels.entryAt(row));
    }
    function askForMenuOfCurrent(): void {
        if (list.currentIndex < 0)
            return;
        list.positionViewAtIndex(list.currentIndex, ListView.Contain);
        askForMenu(list.currentIndex, list.currentItem, 56, list.rowHeight);
    }
    function askForMenu(row: int, item: Item, x: real, y: real): void {
        if (channels.entryAt(row) < 0)
            return;
        const place = item.mapToItem(root.parent, x, y);
        menuRequested(channels.entryAt(row), place.x, place.y);
    }

    Shortcut {
        sequence: "Ctrl+S"
        enabled: search.activeFocus
        onActivated: root.save(list.currentIndex)
    }

    TextField {
        id: search

        anchors {
            left: parent.left; right: parent.right; top: parent.top
            leftMargin: Theme.spacing * 3; rightMargin: Theme.spacing * 3
        }
        iconName: "search"
        // With nothing typed it is meant for the list.
        takesMenuKey: text !== ""
        placeholderText: root.channels.count === 1 ? qsTr("Search 1 channel")
                       : qsTr("Search %Ln channels", "", root.channels.count)
        text: root.channels.filterText
        onTextEdited: root.channels.filterText = text
        onCleared: root.channels.filterText = ""
        onAccepted: {
            // Enter right after typing means the first match.
            if (list.currentIndex < 0)
                list.currentIndex = root.channels.firstChannelRow();
            root.activate(list.currentIndex);
        }
        Keys.onPressed: event => event.accepted = event.accepted || root.steer(event)
        // Keys must not go on typing into a field that nobody sees.
        onVisibleChanged: if (!visible && activeFocus) root.dismissed()
        Keys.onEscapePressed: {
            if (text === "")
                root.dismissed();
            else
                root.channels.filterText = "";
        }
        Accessible.name: qsTr("Search channels")
    }

    ListView {
        id: list

        readonly property int rowHeight: Theme.roomFor(52, 2)
        // While rows fly past, their logos are not worth fetching.
        readonly property bool isHurried: Math.abs(verticalVelocity) > 3000

        anchors {
            left: parent.left; right: parent.right
            top: search.bottom; bottom: parent.bottom
            topMargin: Theme.spacing * 2
        }
        clip: true
        model: root.channels
        currentIndex: -1
        reuseItems: true
        highlightFollowsCurrentItem: false
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Channels")

        Connections {
            target: root.channels

            function onModelReset() {
                list.currentIndex = -1;
                list.positionViewAtBeginning();
            }
        }

        delegate: T.AbstractButton {
            id: row

            required property int index
            required property bool isGroup
            required property string name
            required property string logo
            required property string group
            required property string country
            required property string initial
            required property int channelCount
            required property bool collapsed
            required property bool isCurrent

            width: ListView.view.width
            height: list.rowHeight
            focusPolicy: Qt.NoFocus
            hoverEnabled: true
            onClicked: {
                list.currentIndex = index;
                root.activate(index);
            }

            Accessible.role: Accessible.ListItem
            Accessible.name: isGroup ? qsTr("%1, %n channels", "", channelCount).arg(name) : name
            Accessible.description: isGroup ? "" : [country, group].filter(t => t !== "").join(", ")
            Accessible.selected: ListView.isCurrentItem
            Accessible.onPressAction: if (enabled) clicked()

            background: Rectangle {
                anchors { fill: parent; leftMargin: Theme.spacing; rightMargin: Theme.spacing }
                radius: Theme.radius
                color: row.down ? Theme.fillPressed
                     : row.ListView.isCurrentItem ? Theme.accentSoft
                     : row.hovered ? Theme.fillHover : "transparent"
                border {
                    width: row.ListView.isCurrentItem && search.activeFocus ? 2 : 0
                    color: Theme.accent
                }
            }
            contentItem: Item {
                // On the button itself it would make every mouse button a click.
                TapHandler {
                    acceptedButtons: Qt.RightButton
                    onTapped: point => {
                        list.currentIndex = row.index;
                        root.askForMenu(row.index, row, point.position.x, point.position.y);
                    }
                }
                GroupRow {
                    anchors.fill: parent
                    visible: row.isGroup
                    title: row.name
                    channelCount: row.channelCount
                    collapsed: row.collapsed
                    foldable: root.channels.filterText === ""
                }
                ChannelRow {
                    anchors.fill: parent
                    visible: !row.isGroup
                    name: row.name
                    // Under its category's header a channel need not repeat it.
                    group: root.channels.filterText === "" ? "" : row.group
                    country: row.country
                    logo: row.isGroup || list.isHurried ? "" : row.logo
                    initial: row.initial
                    isCurrent: row.isCurrent
                }
            }
        }
    }

    EmptyState {
        anchors {
            left: parent.left; right: parent.right
            top: search.bottom
            margins: Theme.spacing * 6
        }
        visible: root.channels.matchCount === 0 && root.channels.filterText !== ""
        iconName: "search"
        title: qsTr("No matches")
        text: qsTr("No channel or category contains “%1”.").arg(root.channels.filterText)
    }
}
