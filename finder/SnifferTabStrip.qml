pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Finder
import Lumaro.Ui

// The tabs, and the button for a new one. They share the width; many of them scroll.
Rectangle {
    id: root

    required property SnifferBrowserTabs tabs
    signal newTabRequested()

    readonly property real tabWidth: Math.max(112, Math.min(240, (width - add.width - 24) / Math.max(1, tabs.count)))

    implicitHeight: Theme.roomFor(44, 1)
    color: Theme.background

    ListView {
        id: list

        anchors {
            left: parent.left; top: parent.top; bottom: parent.bottom
            leftMargin: Theme.spacing * 2; topMargin: 6
        }
        width: Math.min(contentWidth, root.width - add.width - 24)
        orientation: ListView.Horizontal
        boundsBehavior: Flickable.StopAtBounds
        clip: contentWidth > width
        spacing: 2
        model: root.tabs
        currentIndex: root.tabs.selectedRow
        highlightMoveDuration: 0
        highlightFollowsCurrentItem: true
        activeFocusOnTab: true
        Accessible.role: Accessible.PageTabList
        Accessible.name: qsTr("Tabs")
        Keys.onLeftPressed: root.tabs.selectNext(-1)
        Keys.onRightPressed: root.tabs.selectNext(1)
        Keys.onDeletePressed: root.tabs.closeRow(root.tabs.selectedRow)

        delegate: T.AbstractButton {
            id: tab

            required property int index
            required property string title
            required property SnifferManager manager
            readonly property bool isSelected: index === root.tabs.selectedRow

            width: root.tabWidth
            height: list.height
            hoverEnabled: true
            focusPolicy: Qt.NoFocus
            onPressed: root.tabs.selectedRow = index
            onHoveredChanged: hovered ? ToolTips.show(tab, title, "") : ToolTips.hide(tab)
            Accessible.role: Accessible.PageTab
            Accessible.name: title
            Accessible.selected: isSelected
            Accessible.onPressAction: root.tabs.selectedRow = index

            TapHandler {
                acceptedButtons: Qt.MiddleButton
                onTapped: root.tabs.closeRow(tab.index)
            }
            background: Item {
                Rectangle {
                    anchors.fill: parent
                    // Only the upper corners are round.
                    anchors.bottomMargin: -radius
                    radius: Theme.radius
                    color: tab.isSelected ? Theme.surface : tab.hovered ? Theme.fillHover : "transparent"
                    border { width: tab.isSelected && list.activeFocus ? 2 : 0; color: Theme.accent }
                }
            }
            contentItem: Item {
                clip: true

                BusyIndicator {
                    id: busy

                    anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
                    width: 14
                    height: 14
                    visible: tab.manager.isLoading
                }
                Icon {
                    anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
                    visible: !busy.visible
                    name: "globe"
                    size: 14
                    color: tab.isSelected ? Theme.accentText : Theme.textSecondary
                }
                Text {
                    anchors {
                        left: parent.left; right: close.left; verticalCenter: parent.verticalCenter
                        leftMargin: 32; rightMargin: 2
                    }
                    text: tab.title
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    maximumLineCount: 1
                    color: tab.isSelected ? Theme.text : Theme.textSecondary
                    font { pixelSize: Theme.fontSmall; weight: tab.isSelected ? Font.DemiBold : Font.Normal }
                }
                IconButton {
                    id: close

                    anchors { right: parent.right; rightMargin: 4; verticalCenter: parent.verticalCenter }
                    implicitWidth: 26
                    visible: tab.isSelected || tab.hovered
                    focusPolicy: Qt.NoFocus
                    iconName: "close"
                    iconSize: 12
                    text: qsTr("Close Tab")
                    shortcutText: tab.isSelected ? "Ctrl+W" : ""
                    onClicked: root.tabs.closeRow(tab.index)
                }
            }
        }
    }
    IconButton {
        id: add

        anchors { left: list.right; leftMargin: Theme.spacing; verticalCenter: list.verticalCenter }
        iconName: "plus"
        text: qsTr("Open New Tab (Command-T)")
        onClicked: root.newTabRequested()
    }
}
