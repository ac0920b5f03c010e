import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A slim scroll bar over the content, visible while scrolling and while pointed at. Attach it:
// `ScrollBar.vertical: ScrollBar {}`.
T.ScrollBar {
    id: control

    implicitWidth: 12
    implicitHeight: 12
    padding: 3
    minimumSize: 0.06
    hoverEnabled: true
    visible: size < 1

    contentItem: Rectangle {
        radius: 3
        color: Theme.textSecondary
        opacity: control.pressed ? 0.9 : control.hovered ? 0.7 : control.active || control.policy === T.ScrollBar.AlwaysOn ? 0.5 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.durationMedium } }
    }
}
