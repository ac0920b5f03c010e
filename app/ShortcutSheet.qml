import QtQuick
import QtQuick.Templates as T
import Lumaro.App
import Lumaro.Ui

// All keys, under headings.
Dialog {
    id: dialog

    required property HelpModel help

    width: Math.min(600, parent ? parent.width - 48 : 600)
    title: qsTr("Keyboard Shortcuts")
    acceptText: qsTr("Close")
    cancelText: ""
    initialFocus: list

    ScrollingList {
        id: list

        height: Math.max(120, Math.min(contentHeight, (dialog.parent ? dialog.parent.height : 600) - 176))
        model: dialog.help.shortcuts
        section.property: "section"
        section.delegate: ListHeading {}
        Accessible.name: dialog.title
        onAccepted: dialog.accept()

        delegate: Item {
            id: row

            required property string title
            required property string text
            readonly property list<string> keys: text.split(" / ")

            x: list.inset
            width: list.width - 2 * list.inset
            height: Math.max(Theme.roomFor(32, 1), label.implicitHeight + 8)

            Accessible.role: Accessible.StaticText
            Accessible.name: title + ": " + text

            Text {
                id: label

                anchors {
                    left: parent.left; right: caps.left
                    rightMargin: Theme.spacing * 4
                    verticalCenter: parent.verticalCenter
                }
                text: row.title
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.text
                font.pixelSize: Theme.fontBody
            }
            Row {
                id: caps

                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                spacing: Theme.spacing

                Repeater {
                    model: row.keys

                    Rectangle {
                        id: cap

                        required property string modelData

                        width: Math.ceil(keyText.implicitWidth) + 12
                        height: Theme.roomFor(22, 1)
                        radius: Theme.radiusSmall
                        color: Theme.fillHover
                        border { width: 1; color: Theme.stroke }

                        Text {
                            id: keyText

                            anchors.centerIn: parent
                            text: cap.modelData
                            textFormat: Text.PlainText
                            color: Theme.text
                            font.pixelSize: Theme.fontSmall
                        }
                    }
                }
            }
        }
    }
}
