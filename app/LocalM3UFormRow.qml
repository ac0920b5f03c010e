import QtQuick
import Lumaro.Ui

// One field of a form with its caption. `shown` is what it shows; edited() tells what was typed.
Item {
    id: root

    property string caption
    property string shown
    property alias placeholderText: field.placeholderText
    property alias errorText: field.errorText
    readonly property Item field: field
    signal edited(string text)
    signal accepted()

    implicitHeight: field.implicitHeight

    Text {
        anchors { left: parent.left; verticalCenter: field.verticalCenter }
        text: root.caption
        color: Theme.textSecondary
        font.pixelSize: Theme.fontBody
    }
    TextField {
        id: field

        anchors { left: parent.left; leftMargin: Math.round(84 * Theme.fontBody / 13); right: parent.right }
        text: root.shown
        onTextEdited: root.edited(text)
        onCleared: root.edited("")
        onAccepted: root.accepted()
        Accessible.name: root.caption
    }
}
