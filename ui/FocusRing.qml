import QtQuick
import Lumaro.Ui

// The ring around a control that has the keyboard's focus. Fills its parent; shown only for focus
// that came from the keyboard (bind `visible` to the control's `visualFocus`).
//   onOverlay  the control lies over the picture
//   around     radius of the control's own corners
Rectangle {
    property bool onOverlay: false
    property real around: Theme.radius

    anchors { fill: parent; margins: -3 }
    radius: around + 3
    color: "transparent"
    border { width: 2; color: onOverlay ? Theme.accentOnOverlay : Theme.accent }
}
