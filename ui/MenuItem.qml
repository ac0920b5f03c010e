import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// One command of a Menu.
//   text          the command, elided when there is no room
//   iconName      an icon before it
//   shortcutText  its keys, in a column of their own
//   checkable, checked   shows a check mark
//   destructive   what it does loses something
//   startsGroup   a line sets it off from the command before it
T.MenuItem {
    id: control

    property string iconName
    property string shortcutText
    property bool destructive: false
    property bool startsGroup: false
    readonly property int groupGap: startsGroup ? 9 : 0
    readonly property string leadingIcon: checked ? "check" : iconName
    readonly property bool hasLeading: checkable || iconName !== ""

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.roomFor(32, 1) + groupGap
    topPadding: groupGap
    topInset: groupGap
    leftPadding: 10
    rightPadding: subMenu ? 28 : 10
    hoverEnabled: true

    Accessible.name: text
    Accessible.description: shortcutText
    Accessible.onPressAction: if (enabled) clicked()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }

    arrow: Icon {
        visible: control.subMenu
        x: control.width - width - 8
        y: control.groupGap + (control.availableHeight - height) / 2
        name: control.subMenu ? "chevron-right" : ""
        size: 16
        color: Theme.textSecondary
    }
    contentItem: Item {
        implicitWidth: label.x + Math.ceil(label.implicitWidth) + (keys.text === "" ? 0 : 32 + Math.ceil(keys.implicitWidth))
        opacity: control.enabled ? 1 : 0.38

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: control.leadingIcon
            size: 16
            color: control.destructive ? Theme.danger : Theme.textSecondary
        }
        Text {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            x: control.hasLeading ? 26 : 0
            width: parent.width - x - (keys.text === "" ? 0 : keys.implicitWidth + 16)
            text: control.text
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: control.destructive ? Theme.danger : Theme.text
            font.pixelSize: Theme.fontBody
        }
        Text {
            id: keys

            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            text: control.shortcutText
            textFormat: Text.PlainText
            color: Theme.textSecondary
            font.pixelSize: Theme.fontSmall
        }
    }
    background: Rectangle {
        radius: Theme.radiusSmall
        color: !control.enabled ? "transparent"
             : control.down ? Theme.fillPressed
             : control.highlighted ? Theme.fillHover : "transparent"
    }

    Rectangle {
        x: 10
        y: 4
        width: control.width - 20
        height: 1
        visible: control.startsGroup
        color: Theme.stroke
    }
}
