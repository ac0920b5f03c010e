import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A button with a text. Enter and Return activate it.
//   text          the text, elided when there is no room
//   iconName      an icon before the text
//   shortcutText  its keys, shown in the tool tip
//   primary       the main action of its place
//   destructive   what it does loses something
//   onOverlay     lies over the picture
//   textSize      of the text, in pixels
T.AbstractButton {
    id: control

    property string iconName
    property string shortcutText
    property bool primary: false
    property bool destructive: false
    property bool onOverlay: false
    property int textSize: Theme.fontBody

    readonly property bool isFilled: enabled && (primary || destructive)
    readonly property color foreground: isFilled ? (destructive ? Theme.onDanger : Theme.onAccent)
                                      : onOverlay ? Theme.textOnOverlay : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: iconName === "" ? 16 : 12
    rightPadding: 16
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.38

    Accessible.name: text
    Accessible.description: shortcutText
    Accessible.onPressAction: if (enabled) clicked()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }

    onHoveredChanged: {
        if (shortcutText !== "" || label.truncated)
            hovered ? ToolTips.show(control, text, shortcutText) : ToolTips.hide(control);
    }
    onPressed: ToolTips.hide(control)

    contentItem: Item {
        implicitWidth: label.implicitWidth + (icon.visible ? icon.width + 8 : 0)

        Icon {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            visible: control.iconName !== ""
            x: Math.max(0, (parent.width - parent.implicitWidth) / 2)
            name: control.iconName
            size: 18
            color: control.foreground
        }
        Text {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            x: icon.visible ? icon.x + icon.width + 8 : Math.max(0, (parent.width - implicitWidth) / 2)
            width: Math.min(implicitWidth, parent.width - x)
            text: control.text
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: control.foreground
            font { pixelSize: control.textSize; weight: Font.Medium }
        }
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.isFilled ? (control.destructive ? Theme.dangerFill : Theme.accent)
             : control.onOverlay ? Theme.fillHoverOnOverlay : Theme.fillHover
        border {
            width: control.isFilled ? 0 : 1
            color: control.onOverlay ? Theme.strokeOnOverlay : Theme.stroke
        }

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: control.hovered || control.down
            color: control.isFilled && Theme.dark ? (control.down ? "#33000000" : "#33ffffff")
                 : control.isFilled ? (control.down ? "#40000000" : "#24ffffff")
                 : control.onOverlay ? Theme.fillHoverOnOverlay
                 : control.down ? Theme.fillPressed : Theme.fillHover
        }
        FocusRing {
            visible: control.visualFocus
            onOverlay: control.onOverlay
        }
    }
}
