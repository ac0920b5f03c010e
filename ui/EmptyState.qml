import QtQuick
import Lumaro.Ui

// What stands where there is nothing yet: a sign, one line, a sentence, and maybe the way out.
// Give it a width; its height follows.
//   iconName, title, text   may each be empty
//   buttonText              offers a button; buttonClicked() is its click
//   onOverlay               lies over the picture
Item {
    id: root

    property string iconName
    property string title
    property string text
    property string buttonText
    property bool onOverlay: false
    signal buttonClicked()

    implicitWidth: 280
    implicitHeight: column.implicitHeight

    Accessible.role: Accessible.StaticText
    Accessible.name: title
    Accessible.description: text

    Column {
        id: column

        width: parent.width
        spacing: 6

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.iconName !== ""
            height: size + 6
            name: root.iconName
            size: 36
            color: root.onOverlay ? Theme.textSecondaryOnOverlay : Theme.textSecondary
        }
        Text {
            width: parent.width
            visible: text !== ""
            text: root.title
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            color: root.onOverlay ? Theme.textOnOverlay : Theme.text
            font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
        }
        Text {
            width: parent.width
            visible: text !== ""
            text: root.text
            textFormat: Text.PlainText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            lineHeight: 1.3
            color: root.onOverlay ? Theme.textSecondaryOnOverlay : Theme.textSecondary
            font.pixelSize: Theme.fontBody
        }
        Loader {
            anchors.horizontalCenter: parent.horizontalCenter
            active: root.buttonText !== ""
            visible: active
            sourceComponent: Item {
                implicitWidth: button.implicitWidth
                implicitHeight: button.implicitHeight + 10

                Button {
                    id: button

                    y: 10
                    onOverlay: root.onOverlay
                    text: root.buttonText
                    onClicked: root.buttonClicked()
                }
            }
        }
    }
}
