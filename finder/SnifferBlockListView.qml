pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Finder
import Lumaro.Ui

// The editor of the user's blocked domains.
Item {
    id: root

    required property SnifferBlockListModel blockList

    function add(): void {
        if (blockList.add(field.text))
            field.clear();
        field.forceActiveFocus();
    }

    Text {
        id: heading

        anchors { left: parent.left; right: parent.right; top: parent.top }
        text: root.blockList.title
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: Theme.text
        font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
    }
    TextField {
        id: field

        anchors {
            left: parent.left; right: addButton.left; top: heading.bottom
            rightMargin: Theme.spacing * 2; topMargin: Theme.spacing * 4
        }
        iconName: "link"
        placeholderText: root.blockList.fieldPlaceholder
        errorText: root.blockList.errorText
        onTextEdited: root.blockList.clearError()
        onCleared: root.blockList.clearError()
        onAccepted: root.add()
        Accessible.name: root.blockList.fieldPlaceholder
    }
    Button {
        id: addButton

        anchors { right: parent.right; verticalCenter: field.verticalCenter }
        text: qsTr("Add")
        primary: true
        enabled: field.text.trim() !== ""
        onClicked: root.add()
    }
    Text {
        id: error

        anchors { left: parent.left; right: parent.right; top: field.bottom; topMargin: Theme.spacing }
        visible: text !== ""
        text: root.blockList.errorText
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        color: Theme.danger
        font.pixelSize: Theme.fontSmall
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    TextField {
        id: search

        anchors {
            left: parent.left; right: parent.right; topMargin: Theme.spacing * 2
            top: error.visible ? error.bottom : field.bottom
        }
        iconName: "search"
        placeholderText: root.blockList.searchPlaceholder
        text: root.blockList.searchText
        onTextEdited: root.blockList.searchText = text
        onCleared: root.blockList.searchText = ""
        Accessible.name: root.blockList.searchPlaceholder
    }

    ListView {
        id: list

        anchors {
            left: parent.left; right: parent.right; top: search.bottom; bottom: footer.top
            topMargin: Theme.spacing * 2; bottomMargin: Theme.spacing * 2
        }
        clip: true
        model: root.blockList
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        T.ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: root.blockList.title

        delegate: Item {
            id: row

            required property int index
            required property string domain
            required property string deleteHelp

            width: ListView.view.width
            height: Theme.roomFor(40, 1)
            Accessible.role: Accessible.ListItem
            Accessible.name: domain

            Rectangle {
                anchors.fill: parent
                radius: Theme.radius
                color: hover.hovered ? Theme.fillHover : "transparent"
            }
            HoverHandler { id: hover }
            Text {
                anchors {
                    left: parent.left; right: deleteButton.left; verticalCenter: parent.verticalCenter
                    leftMargin: Theme.spacing * 3; rightMargin: Theme.spacing * 2
                }
                text: row.domain
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                color: Theme.text
                font.pixelSize: Theme.fontBody
            }
            IconButton {
                id: deleteButton

                anchors { right: parent.right; rightMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }
                iconName: "trash"
                iconSize: 16
                text: row.deleteHelp
                onClicked: root.blockList.remove(row.index)
            }
        }
    }
    EmptyState {
        anchors { horizontalCenter: list.horizontalCenter; verticalCenter: list.verticalCenter }
        width: Math.min(parent.width - 32, 320)
        visible: root.blockList.emptyTitle !== ""
        iconName: root.blockList.count === 0 ? "stop" : "search"
        title: root.blockList.emptyTitle
        text: root.blockList.emptyText
    }

    Item {
        id: footer

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: Theme.controlHeight

        Text {
            anchors { left: parent.left; verticalCenter: parent.verticalCenter }
            text: root.blockList.caption
            textFormat: Text.PlainText
            color: Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
        Button {
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            text: qsTr("Clear All")
            iconName: "trash"
            enabled: root.blockList.count > 0
            onClicked: clearing.active = true
        }
    }

    Loader {
        id: clearing

        active: false
        onLoaded: (item as Dialog).open()
        sourceComponent: Dialog {
            title: root.blockList.clearTitle
            text: root.blockList.clearText
            acceptText: qsTr("Clear All")
            destructive: true
            onAccepted: root.blockList.removeAll()
            onClosed: clearing.active = false
        }
    }
}
