pragma ComponentBehavior: Bound

import QtQuick
import Lumaro.Finder
import Lumaro.Ui

// The stream finder: tabs, toolbar, the pages, and below them the streams that they loaded.
//   webPage           makes the pages of one tab, which has `manager`, `isFullScreen`, `isAsking`,
//                     `zoom(by)`, `find()` and `leaveFullScreen()`
//   isPageFullScreen  a page wants the whole screen
FocusScope {
    id: root

    objectName: "finderView"

    required property SnifferViewModel finder
    required property Component webPage
    // The selected tab's; null while that is empty.
    property Item page: null
    readonly property bool isPageFullScreen: page ? page.isFullScreen : false
    readonly property SnifferManager tab: finder.tabs.selectedTab

    function focusPage(): void {
        if (page)
            page.forceActiveFocus();
    }

    // A new window is for going somewhere.
    Component.onCompleted: toolbar.editAddress()
    Keys.onPressed: event => event.accepted = root.finder.takeKey(event.text)

    Shortcut { sequence: "Ctrl+T"; onActivated: { root.finder.tabs.addTab(); toolbar.editAddress(); } }
    Shortcut { sequence: "Ctrl+W"; onActivated: root.finder.tabs.closeRow(root.finder.tabs.selectedRow) }
    Shortcut { sequence: "Ctrl+Shift+T"; onActivated: root.finder.tabs.reopenTab() }
    Shortcut { sequences: ["Ctrl+L", "Alt+D", "F6"]; onActivated: toolbar.editAddress() }
    Shortcut { sequences: ["Ctrl+R", "F5"]; onActivated: root.tab.reload() }
    Shortcut { sequence: "Alt+Left"; onActivated: root.tab.goBack() }
    Shortcut { sequence: "Alt+Right"; onActivated: root.tab.goForward() }
    Shortcut { sequences: ["Ctrl+Tab", "Ctrl+PgDown"]; onActivated: root.finder.tabs.selectNext(1) }
    Shortcut { sequences: ["Ctrl+Shift+Tab", "Ctrl+Shift+Backtab", "Ctrl+PgUp"]; onActivated: root.finder.tabs.selectNext(-1) }
    Shortcut { sequences: ["Ctrl++", "Ctrl+="]; onActivated: root.page?.zoom(1) }
    Shortcut { sequence: "Ctrl+-"; onActivated: root.page?.zoom(-1) }
    Shortcut { sequence: "Ctrl+0"; onActivated: root.page?.zoom(0) }
    Shortcut { sequence: "Ctrl+F"; onActivated: root.page?.find() }
    Shortcut { sequence: "Ctrl+D"; onActivated: root.finder.toggleStar() }
    Shortcut { sequence: "Ctrl+H"; onActivated: toolbar.openWebList() }
    Shortcut {
        sequence: "Escape"
        // What a page asks hears it first.
        enabled: root.isPageFullScreen || (root.tab.isLoading && !(root.page?.isAsking ?? false))
        onActivated: root.isPageFullScreen ? root.page.leaveFullScreen() : root.tab.stopLoading()
    }

    SnifferTabStrip {
        id: strip

        anchors { left: parent.left; right: parent.right; top: parent.top }
        visible: !root.isPageFullScreen
        tabs: root.finder.tabs
        onNewTabRequested: {
            root.finder.tabs.addTab();
            toolbar.editAddress();
        }
    }
    SnifferToolbar {
        id: toolbar

        anchors { left: parent.left; right: parent.right; top: strip.bottom }
        visible: !root.isPageFullScreen
        finder: root.finder
        tab: root.tab
        onPageWanted: root.focusPage()
    }

    Item {
        id: stage

        anchors {
            left: parent.left; right: parent.right
            top: root.isPageFullScreen ? parent.top : toolbar.bottom
            bottom: root.isPageFullScreen ? parent.bottom : panel.top
        }
        clip: true

        Repeater {
            id: pages

            model: root.finder.tabs

            Loader {
                id: tabPage

                required property int index
                required property SnifferManager manager

                anchors.fill: parent
                visible: index === root.finder.tabs.selectedRow
                focus: visible
                // An empty tab needs no engine.
                active: manager.wantsView
                sourceComponent: root.webPage
                onLoaded: item.manager = manager

                Binding {
                    target: root
                    property: "page"
                    value: tabPage.item
                    when: tabPage.visible
                    restoreMode: Binding.RestoreNone
                }
            }
        }
        EmptyState {
            anchors.centerIn: parent
            width: Math.min(parent.width - 64, 420)
            visible: root.page === null
            iconName: "globe"
            title: qsTr("Find the streams of a web page")
            text: qsTr("Type an address above, play the video there, and its HLS streams are listed below.")
        }
        Toast {
            anchors {
                bottom: parent.bottom; bottomMargin: Theme.spacing * 4
                horizontalCenter: parent.horizontalCenter
            }
            text: notice.text
        }
    }

    SnifferDetectedStreamsView {
        id: panel

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        visible: !root.isPageFullScreen
        maximumHeight: root.height * 0.4
        finder: root.finder
    }

    Timer {
        id: notice

        property string text

        interval: 2800
        onTriggered: text = ""
    }
    Connections {
        target: root.finder

        function onNotice(text: string) {
            notice.text = text;
            notice.restart();
        }
    }
}
