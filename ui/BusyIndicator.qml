import QtQuick
import Lumaro.Ui

// A thin turning arc: something takes its time.
//   running    turns; invisible otherwise
//   size       edge length
//   onOverlay  lies over the picture
Item {
    id: root

    property bool running: true
    property int size: 32
    property bool onOverlay: false

    implicitWidth: size
    implicitHeight: size
    visible: running

    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("Busy")

    Icon {
        anchors.centerIn: parent
        name: "busy"
        size: root.size
        color: root.onOverlay ? Theme.textOnOverlay : Theme.accentText

        RotationAnimator on rotation {
            running: root.running && root.visible
            from: 0
            to: 360
            duration: 1100
            loops: Animation.Infinite
        }
    }
}
