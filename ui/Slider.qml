import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A horizontal slider for a level such as the volume. The arrow keys and the wheel move it by
// `stepSize`, Page Up and Page Down by four of them; the value may be bound, dragging does not break the
// binding.
//   from, to, value, stepSize   as usual; moved() is emitted while the user changes the value
//   onOverlay                   lies over the picture
//   shortcutText                its keys, shown with its accessible name in the tool tip
T.Slider {
    id: control

    property bool onOverlay: false
    property string shortcutText
    readonly property color fill: onOverlay ? Theme.textOnOverlay : Theme.accent

    implicitWidth: 96
    implicitHeight: 20
    padding: 0
    stepSize: (to - from) / 20
    snapMode: T.Slider.NoSnap
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    wheelEnabled: true
    opacity: enabled ? 1 : 0.38

    onHoveredChanged: hovered ? ToolTips.show(control, Accessible.name, shortcutText) : ToolTips.hide(control)
    onPressedChanged: if (pressed) ToolTips.hide(control)

    function moveBy(steps: int): void {
        // Assigning the value would end a binding.
        for (let i = 0; i < Math.abs(steps); ++i)
            steps > 0 ? increase() : decrease();
        moved();
    }

    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown;
        if (event.accepted)
            moveBy(event.key === Qt.Key_PageUp ? 4 : -4);
    }

    Accessible.onIncreaseAction: moveBy(1)
    Accessible.onDecreaseAction: moveBy(-1)

    background: Item {
        Rectangle {
            id: groove

            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
            height: 4
            radius: 2
            color: control.onOverlay ? Theme.fillPressedOnOverlay : Theme.fillPressed

            Rectangle {
                width: control.visualPosition * (control.width - 12) + 6
                height: parent.height
                radius: 2
                color: control.fill
            }
        }
        FocusRing {
            visible: control.visualFocus
            onOverlay: control.onOverlay
            around: 8
        }
    }
    handle: Rectangle {
        x: control.visualPosition * (control.width - width)
        y: (control.height - height) / 2
        width: 12
        height: 12
        radius: 6
        color: control.fill
        scale: control.pressed ? 1.2 : control.hovered ? 1.1 : 1
    }
}
