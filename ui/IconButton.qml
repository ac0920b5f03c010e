import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A button that is only an icon. Enter and Return activate it.
//   iconName      the icon
//   text          what it does: accessible name and tool tip
//   shortcutText  its keys, shown in the tool tip
//   checked       the state it stands for is on
//   urgent        what it stands for must not be forgotten
//   obstacle      why it can do nothing now; unlike a disabled one it says so in its tool tip
//   onOverlay     lies over the picture
//   prominent     the one main action: larger, filled and round
//   iconSize      edge length of the icon
T.AbstractButton {
    id: control

    property string iconName
    property string shortcutText
    property bool urgent: false
    property string obstacle
    property bool onOverlay: false
    property bool prominent: false
    property int iconSize: prominent ? 24 : Theme.iconSize
    readonly property string toolTipText: obstacle === "" ? text : obstacle
    readonly property string toolTipKeys: obstacle === "" ? shortcutText : ""

    implicitWidth: prominent ? 48 : Theme.controlHeight
    implicitHeight: implicitWidth
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled && obstacle === "" ? 1 : 0.38

    Accessible.name: text
    Accessible.description: obstacle === "" ? shortcutText : obstacle
    Accessible.onPressAction: if (enabled && obstacle === "") clicked()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat && obstacle === "") control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat && obstacle === "") control.clicked(); }
    Keys.onSpacePressed: event => event.accepted = obstacle !== ""

    onHoveredChanged: hovered ? ToolTips.show(control, toolTipText, toolTipKeys) : ToolTips.hide(control)
    onVisualFocusChanged: visualFocus ? ToolTips.show(control, toolTipText, toolTipKeys) : ToolTips.hide(control)
    onToolTipTextChanged: ToolTips.update(control, toolTipText, toolTipKeys)
    onPressed: ToolTips.hide(control)

    contentItem: Icon {
        name: control.iconName
        size: control.iconSize
        color: control.prominent ? (control.onOverlay ? "#17181c" : Theme.onAccent)
             : control.urgent ? (control.onOverlay ? Theme.dangerOnOverlay : Theme.danger)
             : control.onOverlay ? (control.checked ? Theme.accentOnOverlay : Theme.textOnOverlay)
             : control.checked ? Theme.accentText
             : control.hovered ? Theme.text : Theme.textSecondary
    }
    background: Rectangle {
        radius: control.prominent ? height / 2 : Theme.radius
        color: control.prominent ? (control.onOverlay ? Theme.textOnOverlay : Theme.accent)
             : control.onOverlay ? (control.down ? Theme.fillPressedOnOverlay
                                  : control.hovered ? Theme.fillHoverOnOverlay : "transparent")
             : control.checked ? Theme.accentSoft
             : control.down ? Theme.fillPressed
             : control.hovered ? Theme.fillHover : "transparent"
        scale: control.prominent ? (control.down ? 0.94 : control.hovered ? 1.05 : 1) : 1

        FocusRing {
            visible: control.visualFocus
            onOverlay: control.onOverlay
            around: parent.radius
        }
    }

    // Takes the clicks for which there is an obstacle.
    MouseArea {
        anchors.fill: parent
        visible: control.obstacle !== ""
    }
}
