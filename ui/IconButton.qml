import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A button that is only an icon. Enter and Return activate it.
//   iconName      the icon
//   text          what it does: accessible name and tool tip
//   shortcutText  its keys, shown in the tool tip
//   checked       the state it stands for is on
//   onOverlay     lies over the picture
//   prominent     the one main action: larger, filled and round
//   iconSize      edge length of the icon
T.AbstractButton {
    id: control

    property string iconName
    property string shortcutText
    property bool onOverlay: false
    property bool prominent: false
    property int iconSize: prominent ? 24 : Theme.iconSize
    readonly property string toolTipText: text

    implicitWidth: prominent ? 48 : Theme.controlHeight
    implicitHeight: implicitWidth
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.38

    Accessible.name: text
    Accessible.description: shortcutText
    Accessible.onPressAction: if (enabled) clicked()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }

    onHoveredChanged: hovered ? ToolTips.show(control, text, shortcutText) : ToolTips.hide(control)
    onVisualFocusChanged: visualFocus ? ToolTips.show(control, text, shortcutText) : ToolTips.hide(control)
    onTextChanged: ToolTips.update(control, text, shortcutText)
    onPressed: ToolTips.hide(control)

    contentItem: Icon {
        name: control.iconName
        size: control.iconSize
        color: control.prominent ? (control.onOverlay ? "#17181c" : Theme.onAccent)
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
}
