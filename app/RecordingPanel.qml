import QtQuick
import QtQuick.Window
import Lumaro.App
import Lumaro.Ui

// Floats above everything while a recording runs: the time, and the button that stops. A window of
// its own, so that it is in no recording.
Window {
    id: panel

    required property RecordingModel recording
    // Once: the user may move it.
    readonly property point place: recording.panelPosition()

    width: Math.round(recording.controller.recordingPanelWidth * Theme.fontSmall / 12)
    height: Theme.roomFor(48, 1)
    x: place.x + recording.controller.recordingPanelWidth - width
    y: place.y
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.WindowDoesNotAcceptFocus
    color: "transparent"
    title: qsTr("Recording")

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusLarge
        color: "#e61c1c20"
        border { width: 1; color: Theme.strokeOnOverlay }

        DragHandler {
            target: null
            onActiveChanged: if (active) panel.startSystemMove()
        }

        Column {
            anchors {
                left: parent.left; right: stop.left; verticalCenter: parent.verticalCenter
                leftMargin: 13; rightMargin: 6
            }

            SteadyText {
                width: parent.width
                text: panel.recording.controller.durationLabel
            }
            Text {
                width: parent.width
                visible: panel.recording.isWithoutSound
                text: qsTr("No sound")
                textFormat: Text.PlainText
                elide: Text.ElideRight
                color: Theme.dangerOnOverlay
                font.pixelSize: Theme.fontSmall
                Accessible.role: Accessible.AlertMessage
                Accessible.name: qsTr("Recording without sound: there is no audio output.")
            }
        }
        Button {
            id: stop

            anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
            implicitHeight: Theme.roomFor(28, 1)
            leftPadding: 6
            rightPadding: 6
            textSize: Theme.fontSmall
            destructive: true
            onOverlay: true
            text: qsTr("Stop Recording")
            shortcutText: "Ctrl+Shift+R"
            onClicked: panel.recording.controller.stopFromPanel()
        }
    }
}
