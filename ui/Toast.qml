import QtQuick
import Lumaro.Ui

// A short notice over the picture: shown while `text` is not empty, spoken to assistive
// technology, never in the way of the pointer.
//   text  the notice, on two lines at most
Item {
    id: root

    property string text
    property real maximumWidth: 480
    readonly property bool shown: text !== ""

    implicitWidth: surface.implicitWidth
    implicitHeight: surface.implicitHeight
    opacity: shown ? 1 : 0
    visible: opacity > 0
    Behavior on opacity { NumberAnimation { duration: Theme.durationMedium } }

    Accessible.role: Accessible.AlertMessage
    Accessible.name: surface.lastText

    onTextChanged: {
        if (text === "")
            return;
        // What fades out is the text that was there.
        surface.lastText = text;
        surface.active = true;
        Announcer.announce(root);
    }

    Loader {
        id: surface

        property string lastText

        anchors.fill: parent
        active: false
        sourceComponent: Rectangle {
            implicitWidth: Math.min(root.maximumWidth, Math.ceil(label.implicitWidth) + 32)
            implicitHeight: label.height + 20
            radius: Theme.radiusLarge
            color: Theme.overlay
            border { width: 1; color: Theme.strokeOnOverlay }

            Text {
                id: label

                anchors.centerIn: parent
                width: Math.min(implicitWidth, root.maximumWidth - 32)
                text: surface.lastText
                textFormat: Text.PlainText
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
                color: Theme.textOnOverlay
                font { pixelSize: Theme.fontBody; weight: Font.Medium }
            }
        }
    }
}
