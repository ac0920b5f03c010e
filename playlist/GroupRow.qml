import QtQuick
import Lumaro.Ui

// A category's header: its title, how many channels it has, and the sign that folds it.
Item {
    id: root

    property string title
    property int channelCount
    property bool collapsed: false
    property bool foldable: true

    Icon {
        id: sign

        anchors { left: parent.left; leftMargin: Theme.spacing * 3; verticalCenter: parent.verticalCenter }
        name: root.collapsed ? "chevron-right" : "chevron-down"
        size: 16
        visible: root.foldable
        color: Theme.textSecondary
    }
    Text {
        anchors {
            left: sign.right; right: number.left
            leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 2
            verticalCenter: parent.verticalCenter
        }
        text: root.title
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: Theme.textSecondary
        font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
    }
    Text {
        id: number

        anchors { right: parent.right; rightMargin: Theme.spacing * 4; verticalCenter: parent.verticalCenter }
        text: root.channelCount.toLocaleString(Qt.locale(), "f", 0)
        color: Theme.textSecondary
        font.pixelSize: Theme.fontSmall
    }
}
