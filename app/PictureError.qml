import QtQuick
import Lumaro.App
import Lumaro.Ui

// The player's error over the picture.
Rectangle {
    id: root

    property alias text: message.text
    signal dismissed()

    implicitHeight: Math.max(message.implicitHeight + Theme.spacing * 6, close.implicitHeight + Theme.spacing * 2)
    radius: Theme.radiusLarge
    color: Theme.overlay
    border { width: 1; color: Theme.strokeOnOverlay }

    // Presses beside the button are not clicks on the picture.
    MouseArea { anchors.fill: parent }

    ErrorLine {
        id: message

        anchors {
            left: parent.left; right: close.left
            verticalCenter: parent.verticalCenter
            leftMargin: Theme.spacing * 4; rightMargin: Theme.spacing * 2
        }
        onOverlay: true
    }
    IconButton {
        id: close

        anchors { right: parent.right; top: parent.top; margins: Theme.spacing }
        onOverlay: true
        iconName: "close"
        text: qsTr("Dismiss")
        onClicked: root.dismissed()
    }
}
