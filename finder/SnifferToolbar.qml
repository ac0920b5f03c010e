pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Finder
import Lumaro.Ui

// Where the selected tab is and goes, and what holds for all tabs: ad blocker, proxy, web list.
Rectangle {
    id: root

    required property SnifferViewModel finder
    required property SnifferManager tab
    // The user is done here.
    signal pageWanted()

    function editAddress(): void {
        address.forceActiveFocus(Qt.ShortcutFocusReason);
        address.selectAll();
    }
    function openWebList(): void { webListPanel.open(); }

    implicitHeight: bar.height + (error.visible ? error.height : 0)
    color: Theme.surface

    component ToolPanel: T.Popup {
        id: popup

        default property alias content: content.data
        readonly property FocusReturn before: FocusReturn {}

        parent: root
        x: root.width - width - Theme.spacing * 3
        y: bar.height + Theme.spacing
        width: 420
        height: Math.min(implicitContentHeight + topPadding + bottomPadding, root.Window.height - 120)
        padding: Theme.spacing * 4
        margins: Theme.spacing * 2
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onAboutToShow: before.remember(contentItem)
        onClosed: before.giveBack(contentItem)

        contentItem: FocusScope {
            id: content

            focus: true
            implicitHeight: children.length > 0 ? children[0].implicitHeight : 0
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

    Item {
        id: bar

        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: Theme.roomFor(52, 1)

        Row {
            id: leading

            anchors { left: parent.left; leftMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }

            IconButton {
                iconName: "back"
                text: qsTr("Back")
                shortcutText: "Alt+Left"
                enabled: root.tab.canGoBack
                onClicked: root.tab.goBack()
            }
            IconButton {
                iconName: "forward"
                text: qsTr("Forward")
                shortcutText: "Alt+Right"
                enabled: root.tab.canGoForward
                onClicked: root.tab.goForward()
            }
            IconButton {
                iconName: root.tab.isLoading ? "close" : "reload"
                iconSize: root.tab.isLoading ? 16 : Theme.iconSize
                text: root.tab.isLoading ? qsTr("Stop") : qsTr("Reload")
                shortcutText: root.tab.isLoading ? "Esc" : "Ctrl+R"
                enabled: root.tab.isLoading || root.tab.wantsView
                onClicked: root.tab.isLoading ? root.tab.stopLoading() : root.tab.reload()
            }
        }
        TextField {
            id: address

            anchors {
                left: leading.right; right: trailing.left; verticalCenter: parent.verticalCenter
                leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 2
            }
            iconName: "globe"
            placeholderText: qsTr("Enter the address of a web page")
            errorText: root.tab.errorMessage
            inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoPredictiveText
            // The page does not write over what the user is typing.
            property bool isEdited: false
            onTextEdited: isEdited = true
            onActiveFocusChanged: if (!activeFocus) isEdited = false
            onIsEditedChanged: if (isEdited) editedTab = root.tab
            property SnifferManager editedTab: null
            onCleared: {
                isEdited = false;
                root.tab.clearAddress();
            }
            onAccepted: {
                root.tab.address = text;
                isEdited = false;
                root.tab.go();
                if (root.tab.errorMessage === "")
                    root.pageWanted();
            }
            Keys.onEscapePressed: {
                isEdited = false;
                root.pageWanted();
            }
            Accessible.name: qsTr("Address")

            // Typing breaks a plain binding.
            Binding on text {
                value: root.tab.address
                when: !address.isEdited || address.editedTab !== root.tab
                restoreMode: Binding.RestoreNone
            }
        }
        Row {
            id: trailing

            anchors { right: parent.right; rightMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }

            IconButton {
                iconName: "star"
                checked: root.finder.isStarred
                enabled: root.finder.canStar
                text: root.finder.starHelp
                shortcutText: "Ctrl+D"
                onClicked: root.finder.toggleStar()
            }
            Separator {}
            IconButton {
                iconName: "shield"
                checked: root.finder.isBlocking
                text: root.finder.adBlockerHelp
                onClicked: root.finder.toggleBlocking()
            }
            IconButton {
                iconName: "edit"
                checked: blockListPanel.visible
                text: root.finder.blockListHelp
                onClicked: blockListPanel.open()
            }
            Separator {}
            IconButton {
                iconName: "tunnel"
                checked: root.finder.isProxied
                text: root.finder.proxyHelp
                onClicked: root.finder.toggleProxy()
            }
            IconButton {
                iconName: "settings"
                checked: proxyPanel.visible
                text: root.finder.proxySettingsHelp
                onClicked: proxyPanel.open()
            }
            Separator {}
            IconButton {
                iconName: "list"
                checked: webListPanel.visible
                text: root.finder.webListHelp
                shortcutText: "Ctrl+H"
                onClicked: webListPanel.open()
            }
        }
    }
    component Separator: Item {
        width: 9
        height: Theme.controlHeight

        Rectangle {
            anchors.centerIn: parent
            width: 1
            height: 20
            color: Theme.stroke
        }
    }

    Item {
        id: error

        anchors { left: parent.left; right: parent.right; top: bar.bottom }
        height: Theme.roomFor(32, 1)
        visible: root.tab.errorMessage !== ""

        Icon {
            id: errorIcon

            anchors { left: parent.left; leftMargin: leading.width + Theme.spacing * 6; verticalCenter: parent.verticalCenter; verticalCenterOffset: -4 }
            name: "alert"
            size: 16
            color: Theme.danger
        }
        Text {
            anchors {
                left: errorIcon.right; right: parent.right; verticalCenter: errorIcon.verticalCenter
                leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 4
            }
            text: root.tab.errorMessage
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: Theme.danger
            font.pixelSize: Theme.fontSmall
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    Rectangle {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: 1
        color: Theme.stroke
    }

    ToolPanel {
        id: blockListPanel

        height: 480
        SnifferBlockListView { anchors.fill: parent; blockList: root.finder.blockList }
    }
    ToolPanel {
        id: proxyPanel

        SnifferProxySettingsView { width: parent.width; settings: root.finder.proxySettings }
    }
    ToolPanel {
        id: webListPanel

        height: 520
        width: 480
        SnifferWebListView {
            anchors.fill: parent
            webList: root.finder.webList
            onWebsiteActivated: (address, inNewTab) => {
                webListPanel.close();
                root.finder.openWebsite(address, inNewTab);
                root.pageWanted();
            }
        }
    }
}
