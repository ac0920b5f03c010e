import QtQuick
import Lumaro.Finder
import Lumaro.Ui

Window {
    id: window

    required property SnifferBlockListModel blockList
    required property SnifferProxySettingsModel proxySettings
    required property SnifferWebListModel webList

    width: 1240
    height: 640
    visible: true
    color: Theme.background
    title: "Stream finder"

    component Card: Rectangle {
        width: (parent.width - 32) / 3
        height: parent.height
        radius: Theme.radiusLarge
        color: Theme.surface
        border { width: 1; color: Theme.stroke }
    }

    Row {
        anchors { fill: parent; margins: 16 }
        spacing: 16

        Card {
            SnifferBlockListView { anchors { fill: parent; margins: 16 } blockList: window.blockList }
        }
        Card {
            SnifferProxySettingsView { anchors { fill: parent; margins: 16 } settings: window.proxySettings }
        }
        Card {
            SnifferWebListView { anchors { fill: parent; margins: 16 } webList: window.webList }
        }
    }
}
