import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A setting that is on or off, with its name. It does not switch by itself: bind `isOn` and follow
// switched(). Space, Enter and Return toggle it.
//   text      what is switched
//   isOn      the state
//   switched()  the user asks for the other state
T.AbstractButton {
    id: control

    property bool isOn: false
    signal switched()

    implicitWidth: label.implicitWidth + spacing + track.width
    implicitHeight: Theme.controlHeight
    spacing: 12
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.38
    onClicked: switched()

    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.onPressAction: if (enabled) switched()
    Accessible.onToggleAction: if (enabled) switched()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }

    contentItem: Item {
        Text {
            id: label

            anchors {
                left: parent.left; right: track.left; rightMargin: control.spacing
                verticalCenter: parent.verticalCenter
            }
            text: control.text
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: Theme.text
            font { family: Theme.fontFamily; pixelSize: Theme.fontBody; weight: Font.Medium }
        }
        Rectangle {
            id: track

            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            width: 38
            height: 22
            radius: 11
            color: control.isOn ? Theme.accent : control.hovered ? Theme.fillPressed : Theme.fillHover
            border { width: control.isOn ? 0 : 1; color: Theme.stroke }
            Behavior on color { ColorAnimation { duration: Theme.durationShort } }

            Rectangle {
                x: control.isOn ? parent.width - width - 3 : 3
                anchors.verticalCenter: parent.verticalCenter
                width: 16
                height: 16
                radius: 8
                color: control.isOn ? Theme.onAccent : Theme.textSecondary
                Behavior on x { NumberAnimation { duration: Theme.durationMedium; easing.type: Easing.OutCubic } }
            }
        }
    }
    background: Item {
        FocusRing { visible: control.visualFocus }
    }
}
