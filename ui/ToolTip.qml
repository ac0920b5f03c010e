import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// What a control does and its keys, beside the control. Controls do not make one each: they ask
// ToolTips.
//   text          what it does
//   shortcutText  its keys
T.ToolTip {
    id: control

    property string shortcutText

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(Theme.roomFor(28, 1), implicitContentHeight + 12)
    margins: 8
    leftPadding: 10
    rightPadding: 10
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.durationShort }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; to: 0; duration: Theme.durationShort }
    }

    contentItem: Item {
        implicitWidth: label.width + (keys.visible ? keys.implicitWidth + 10 : 0)
        implicitHeight: label.implicitHeight

        Text {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, 27 * font.pixelSize)
            text: control.text
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: Theme.text
            font.pixelSize: Theme.fontSmall
        }
        Text {
            id: keys

            anchors { verticalCenter: parent.verticalCenter; right: parent.right }
            visible: text !== ""
            text: control.shortcutText
            textFormat: Text.PlainText
            color: Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
    }
    background: Item {
        Shadow { anchors.fill: parent; radius: 8 }
        Rectangle {
            anchors.fill: parent
            radius: 8
            color: Theme.surfaceRaised
            border { width: 1; color: Theme.stroke }
        }
    }
}
