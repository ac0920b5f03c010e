import QtQuick
import QtQuick.Templates as T
import Lumaro.Playlist
import Lumaro.Ui

// The library's links with a search over them. In the search field the arrows move through the
// list, Enter plays, F2 edits, Shift+F10 shows what else can be done, and Delete asks
// to delete where there is nothing to delete in the text.
Item {
    id: root

    required property LocalM3UListModel links
    signal played(int row)
    signal edited(int row)
    signal deleted(int row)
    signal undone()
    signal redone()
    // The user asks what can be done with the link at `row`, at this place.
    signal menuRequested(int row, real x, real y)
    // The user is done here.
    signal dismissed()

    function takeFocus(): void {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
    }
    // Enter was pressed before the matches were found.
    property bool playsWhenFound: false

    function play(): void {
        playsWhenFound = links.isSearching;
        if (playsWhenFound)
            return;
        if (links.selectedRow < 0)
            links.moveSelection(1);
        played(links.selectedRow);
    }
    function move(step: int): void {
        links.moveSelection(step);
        // The focus stays in the search field.
        Announcer.announce(list.itemAtIndex(links.selectedRow));
    }
    function handleKey(event: KeyEvent): void {
        if (event.accepted)
            return;
        // A text field keeps these keys from the menu; with nothing typed they are meant for the list.
        if (search.text === "" && (event.matches(StandardKey.Undo) || event.matches(StandardKey.Redo))) {
            event.matches(StandardKey.Undo) ? undone() : redone();
            event.accepted = true;
            return;
        }
        const page = Math.max(1, Math.floor(list.height / list.rowHeight) - 1);
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Up: root.move(-1); break;
        case Qt.Key_Down: root.move(1); break;
        case Qt.Key_PageUp: root.move(-page); break;
        case Qt.Key_PageDown: root.move(page); break;
        case Qt.Key_F2: edited(links.selectedRow); break;
        case Qt.Key_Menu: askForMenuOfSelected(); break;
        case Qt.Key_F10:
            event.accepted = event.modifiers === Qt.ShiftModifier;
            if (event.accepted)
                askForMenuOfSelected();
            break;
        default: event.accepted = false;
        }
    }
    function askForMenuOfSelected(): void {
        links.moveSelection(0);
        const item = list.itemAtIndex(links.selectedRow);
        if (item)
            askForMenu(links.selectedRow, item, 56, list.rowHeight);
    }
    function askForMenu(row: int, item: Item, x: real, y: real): void {
        links.selectedRow = row;
        const place = item.mapToItem(root.parent, x, y);
        menuRequested(row, place.x, place.y);
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
        placeholderText: root.links.isLoading ? qsTr("Loading…")
                       : root.links.count === 1 ? qsTr("Search 1 link")
                       : qsTr("Search %Ln links", "", root.links.count)
        text: root.links.filterText
        onTextEdited: root.links.filterText = text
        onCleared: root.links.filterText = ""
        onAccepted: root.play()
        Keys.onPressed: event => root.handleKey(event)
        Keys.onDeletePressed: event => {
            event.accepted = cursorPosition === length && selectedText === "";
            if (event.accepted)
                root.deleted(root.links.selectedRow);
        }
        // Keys must not go on typing into a field that nobody sees.
        onVisibleChanged: if (!visible && activeFocus) root.dismissed()
        Keys.onEscapePressed: {
            if (text === "")
                root.dismissed();
            else
                root.links.filterText = "";
        }
        Accessible.name: qsTr("Search Local M3U")
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
        model: root.links
        currentIndex: -1
        reuseItems: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Local M3U")

        onVisibleChanged: if (!visible && activeFocus) root.dismissed()
        Keys.onPressed: event => root.handleKey(event)
        Keys.onReturnPressed: root.play()
        Keys.onEnterPressed: root.play()
        Keys.onDeletePressed: root.deleted(root.links.selectedRow)
        Keys.onEscapePressed: root.dismissed()

        Connections {
            target: root.links

            function onModelReset() { list.positionViewAtBeginning(); }
            function onIsSearchingChanged() {
                if (root.playsWhenFound && !root.links.isSearching)
                    root.play();
            }
            function onRevealRequested(row: int) { list.positionViewAtIndex(row, ListView.Contain); }
        }

        delegate: T.AbstractButton {
            id: row

            required property int index
            required property string name
            required property string logo
            required property string group
            required property string country
            required property string initial
            required property bool isCurrent

            readonly property bool isSelected: index === root.links.selectedRow

            width: ListView.view.width
            height: list.rowHeight
            focusPolicy: Qt.NoFocus
            hoverEnabled: true
            onClicked: {
                root.links.selectedRow = index;
                root.played(index);
            }

            Accessible.role: Accessible.ListItem
            Accessible.name: name
            Accessible.description: [country, group].filter(t => t !== "").join(", ")
            Accessible.selected: isSelected
            Accessible.onPressAction: if (enabled) clicked()

            background: Rectangle {
                anchors { fill: parent; leftMargin: Theme.spacing; rightMargin: Theme.spacing }
                radius: Theme.radius
                color: row.down ? Theme.fillPressed
                     : row.isSelected ? Theme.accentSoft
                     : row.hovered ? Theme.fillHover : "transparent"
                border {
                    width: row.isSelected && list.activeFocus ? 2 : 0
                    color: Theme.accent
                }
            }
            contentItem: Item {
                // On the button itself it would make every mouse button a click.
                TapHandler {
                    acceptedButtons: Qt.RightButton
                    onTapped: point => root.askForMenu(row.index, row, point.position.x, point.position.y)
                }
                ChannelRow {
                    anchors { fill: parent; rightMargin: more.visible ? more.width : 0 }
                    name: row.name
                    group: row.group
                    country: row.country
                    logo: list.isHurried ? "" : row.logo
                    initial: row.initial
                    isCurrent: row.isCurrent
                }
                IconButton {
                    id: more

                    anchors { right: parent.right; rightMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }
                    visible: row.hovered
                    focusPolicy: Qt.NoFocus
                    iconName: "more"
                    text: qsTr("More")
                    onClicked: root.askForMenu(row.index, more, 0, more.height)
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
        visible: root.links.matchCount === 0 && root.links.filterText !== "" && !root.links.isSearching
        iconName: "search"
        title: qsTr("No matches")
        text: qsTr("No name or category contains “%1”.").arg(root.links.filterText)
    }
}
