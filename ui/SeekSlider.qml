import QtQuick
import Lumaro.Ui

// The position in what plays, and the way to another one. `value` may be bound to the player's
// position: while the user drags, the bar follows the pointer; from release on it keeps the
// committed place until `value` changes, or has had its time to.
//   from, to, value      the range and the position, in seconds
//   bufferedEnd          up to where the media is buffered, in seconds
//   live                 plays at the live edge: no handle until the bar is pointed at
//   step                 how far an arrow key goes, in seconds; Page Up and Page Down go twelve times
//                        as far
//   hovering, hoverValue the pointer is over the bar, and the position it points at
//   previewText          the text of the bubble over the pointer, normally made from hoverValue
//   pressed              the user drags
//   moved(value)         while dragging
//   committed(value)     at release, and for every such key
Item {
    id: root

    property real from: 0
    property real to: 1
    property real value: 0
    property real bufferedEnd: from
    property real step: 5
    property bool live: false
    property string previewText
    property bool onOverlay: true

    readonly property alias hovering: pointer.containsMouse
    readonly property alias pressed: pointer.dragging
    readonly property real hoverValue: valueAt(pointer.mouseX)
    // Where the bar stands: the drag, then what was committed, then the value.
    readonly property real shownValue: pointer.dragging ? pointer.dragValue
                                     : pointer.held ? pointer.heldValue : value
    readonly property bool isEmphasized: enabled && (hovering || pressed || keyboardFocus)
    // A click gives no focus, so it came from the keyboard.
    readonly property bool keyboardFocus: activeFocus

    signal moved(real value)
    signal committed(real value)

    function valueAt(x: real): real {
        return width > 0 ? from + Math.max(0, Math.min(1, x / width)) * (to - from) : from;
    }
    function positionOf(v: real): real {
        return to > from ? Math.max(0, Math.min(1, (v - from) / (to - from))) * width : 0;
    }
    function stepTo(v: real): void {
        const target = Math.max(from, Math.min(to, v));
        pointer.hold(target);
        committed(target);
    }

    implicitWidth: 320
    implicitHeight: 20
    activeFocusOnTab: enabled
    onValueChanged: pointer.held = false

    Accessible.role: Accessible.Slider
    Accessible.focusable: true
    Accessible.onIncreaseAction: root.stepTo(root.shownValue + root.step)
    Accessible.onDecreaseAction: root.stepTo(root.shownValue - root.step)

    Keys.onLeftPressed: stepTo(shownValue - step)
    Keys.onRightPressed: stepTo(shownValue + step)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown;
        if (event.accepted)
            stepTo(shownValue + (event.key === Qt.Key_PageUp ? 12 : -12) * step);
    }

    MouseArea {
        id: pointer

        property bool dragging: false
        property real dragValue: 0
        property bool held: false
        property real heldValue: 0

        function hold(v: real): void {
            heldValue = v;
            held = true;
            patience.restart();
        }
        function dragTo(x: real): void {
            const v = root.valueAt(x);
            if (dragging && v === dragValue)
                return;
            dragValue = v;
            dragging = true;
            root.moved(v);
        }

        anchors { fill: parent; topMargin: -4; bottomMargin: -4 }
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => dragTo(mouse.x)
        onPositionChanged: mouse => { if (dragging) dragTo(mouse.x); }
        onReleased: {
            if (!dragging)
                return;
            hold(dragValue);
            dragging = false;
            root.committed(heldValue);
        }
        onCanceled: dragging = false

        // What was committed may have been refused.
        Timer {
            id: patience

            interval: 1000
            onTriggered: pointer.held = false
        }
        onEnabledChanged: if (!enabled) dragging = false
    }

    Rectangle {
        id: groove

        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        height: root.isEmphasized ? 6 : 4
        radius: height / 2
        color: root.onOverlay ? Theme.fillHoverOnOverlay : Theme.fillPressed
        opacity: root.enabled ? 1 : 0.5
        Behavior on height { NumberAnimation { duration: Theme.durationShort } }

        Rectangle {
            visible: width > 0 && root.enabled
            width: root.positionOf(root.bufferedEnd)
            height: parent.height
            radius: height / 2
            color: root.onOverlay ? Theme.fillPressedOnOverlay : Theme.fillPressed
        }
        Rectangle {
            visible: root.enabled
            width: root.positionOf(root.shownValue)
            height: parent.height
            radius: height / 2
            color: root.onOverlay ? Theme.accentOnOverlay : Theme.accent
        }
    }

    Rectangle {
        id: handle

        x: root.positionOf(root.shownValue) - width / 2
        anchors.verticalCenter: parent.verticalCenter
        width: 14
        height: 14
        radius: 7
        visible: root.enabled && scale > 0
        scale: root.isEmphasized ? 1 : 0
        color: root.onOverlay ? Theme.textOnOverlay : Theme.accent
        Behavior on scale { NumberAnimation { duration: Theme.durationShort } }

        FocusRing {
            visible: root.keyboardFocus
            onOverlay: root.onOverlay
            around: 7
        }
    }

    Loader {
        id: bubble

        readonly property real pointedX: root.pressed ? root.positionOf(root.shownValue) : pointer.mouseX

        active: root.enabled && (root.hovering || root.pressed) && root.previewText !== ""
        x: Math.round(Math.max(0, Math.min(root.width - width, pointedX - width / 2)))
        y: -height - 8
        sourceComponent: Rectangle {
            implicitWidth: time.implicitWidth + 16
            implicitHeight: Theme.roomFor(24, 1)
            radius: 8
            color: Theme.overlay
            border { width: 1; color: Theme.strokeOnOverlay }

            Text {
                id: time

                anchors.centerIn: parent
                text: root.previewText
                textFormat: Text.PlainText
                color: Theme.textOnOverlay
                font.pixelSize: Theme.fontSmall
            }
        }
    }
}
