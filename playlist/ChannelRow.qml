import QtQuick
import Lumaro.Ui

// One channel: logo, name, and below it country and category as far as they are known.
Item {
    id: root

    property string name
    property string group
    property string country
    property string logo
    property string initial
    property bool isCurrent: false

    readonly property string detail: [country, group].filter(text => text !== "").join(" · ")

    ChannelLogo {
        id: tile

        anchors { left: parent.left; leftMargin: Theme.spacing * 3; verticalCenter: parent.verticalCenter }
        address: root.logo
        initial: root.initial
    }
    Column {
        anchors {
            left: tile.right; right: playing.visible ? playing.left : parent.right
            leftMargin: Theme.spacing * 3
            rightMargin: playing.visible ? Theme.spacing * 2 : Theme.spacing * 4
            verticalCenter: parent.verticalCenter
        }
        spacing: 2

        Text {
            width: parent.width
            text: root.name
            textFormat: Text.PlainText
            // Beside the logo, whichever way it is written.
            horizontalAlignment: Text.AlignLeft
            elide: Text.ElideRight
            maximumLineCount: 1
            color: root.isCurrent ? Theme.accentText : Theme.text
            font { pixelSize: Theme.fontBody; weight: root.isCurrent ? Font.DemiBold : Font.Medium }
        }
        Text {
            width: parent.width
            visible: text !== ""
            text: root.detail
            textFormat: Text.PlainText
            elide: Text.ElideRight
            maximumLineCount: 1
            color: Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
    }
    Icon {
        id: playing

        anchors { right: parent.right; rightMargin: Theme.spacing * 4; verticalCenter: parent.verticalCenter }
        visible: root.isCurrent
        name: "play"
        size: 16
        color: Theme.accentText
    }
}
