import QtQuick
import Lumaro.App
import Lumaro.Ui

// What the program is, its licence, and the libraries it is made of.
Dialog {
    id: dialog

    required property HelpModel help
    property bool showsLicence: false

    readonly property real listHeight: Math.max(120, Math.min(360, (parent ? parent.height : 600) - 256))

    width: Math.min(660, parent ? parent.width - 48 : 660)
    title: qsTr("Lumaro ") + help.version
    text: qsTr("A media player for the desktop. Free software under the GNU General Public License, version 3 or later, and without any warranty.")
    acceptText: qsTr("Close")
    cancelText: ""
    onAboutToShow: showsLicence = false

    TextButton {
        x: -10
        text: dialog.showsLicence ? qsTr("Show Libraries") : qsTr("Show Licence")
        onClicked: dialog.showsLicence = !dialog.showsLicence
    }

    ScrollingList {
        id: libraries

        height: dialog.listHeight
        visible: !dialog.showsLicence
        model: dialog.help.credits
        section.property: "section"
        section.delegate: ListHeading {}
        Accessible.name: qsTr("Libraries")
        onAccepted: dialog.accept()

        delegate: Item {
            id: row

            required property string title
            required property string text

            x: libraries.inset
            width: libraries.width - 2 * libraries.inset
            height: Math.max(28, name.implicitHeight + 8, licence.implicitHeight + 8)

            Accessible.role: Accessible.StaticText
            Accessible.name: title + ": " + text

            Text {
                id: name

                anchors { left: parent.left; verticalCenter: parent.verticalCenter }
                width: parent.width * 0.45
                text: row.title
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.text
                font.pixelSize: Theme.fontBody
            }
            Text {
                id: licence

                anchors {
                    left: name.right; right: parent.right
                    leftMargin: Theme.spacing * 2
                    verticalCenter: parent.verticalCenter
                }
                text: row.text
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.textSecondary
                font.pixelSize: Theme.fontBody
            }
        }
    }

    ScrollingList {
        id: licenceText

        height: dialog.listHeight
        visible: dialog.showsLicence
        // Paragraphs, so that only those in sight are laid out.
        model: dialog.showsLicence ? dialog.help.licence.split(`\n\n`) : []
        Accessible.name: qsTr("Licence")
        onAccepted: dialog.accept()

        delegate: Text {
            required property string modelData

            x: licenceText.inset
            width: licenceText.width - 2 * licenceText.inset
            bottomPadding: Theme.spacing * 2
            text: modelData
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: Theme.textSecondary
            font { pixelSize: Theme.fontSmall; family: "monospace" }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
