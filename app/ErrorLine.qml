import QtQuick
import Lumaro.Ui

// An error's sentence with its sign, wrapped to the width there is.
Row {
    id: root

    property string text
    property bool onOverlay: false

    onTextChanged: if (text !== "") Announcer.announce(root)

    spacing: Theme.spacing * 2
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Icon {
        id: sign

        name: "alert"
        size: 16
        color: root.onOverlay ? Theme.dangerOnOverlay : Theme.danger
    }
    Text {
        width: root.width - sign.width - root.spacing
        text: root.text
        wrapMode: Text.Wrap
        color: root.onOverlay ? Theme.dangerOnOverlay : Theme.danger
        font.pixelSize: Theme.fontSmall
        textFormat: Text.PlainText
    }
}
