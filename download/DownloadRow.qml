import QtQuick
import Lumaro.Ui

// One download: its file, how far it is, and what can be done with it.
Item {
    id: root

    required property string title
    required property string message
    required property real progress
    required property bool isActive
    required property bool hasFailed
    required property bool canReveal
    signal stopped()
    signal revealed()

    implicitHeight: Theme.roomFor(56, 2)

    Column {
        anchors {
            left: parent.left; right: actions.left
            rightMargin: Theme.spacing * 2
            verticalCenter: parent.verticalCenter
        }
        spacing: 3

        Text {
            width: parent.width
            text: root.title
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            maximumLineCount: 1
            color: Theme.text
            font { pixelSize: Theme.fontBody; weight: Font.Medium }
        }
        Text {
            width: parent.width
            text: root.message
            textFormat: Text.PlainText
            elide: Text.ElideRight
            maximumLineCount: 1
            color: root.hasFailed ? Theme.danger : Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
        Rectangle {
            width: parent.width
            height: 3
            radius: 1.5
            visible: root.isActive && root.progress >= 0
            color: Theme.fillPressed

            Accessible.role: Accessible.ProgressBar
            Accessible.name: root.message

            Rectangle {
                width: parent.width * Math.max(0, root.progress)
                height: parent.height
                radius: parent.radius
                color: Theme.accent
            }
        }
    }

    Row {
        id: actions

        anchors { right: parent.right; verticalCenter: parent.verticalCenter }

        IconButton {
            visible: root.isActive
            iconName: "stop"
            text: qsTr("Stop and Keep the File")
            onClicked: root.stopped()
        }
        IconButton {
            visible: root.canReveal
            iconName: "open"
            text: qsTr("Show in Folder")
            onClicked: root.revealed()
        }
    }
}
