import QtQuick
import QtQuick.Window
import Lumaro.App
import Lumaro.Ui

// Floats above everything while a recording runs: the time, and the button that stops. A window of
// its own, so that it is in no recording.
Window {
    id: panel

    required property RecordingModel recording
    readonly property int gap: 18

    width: recording.controller.recordingPanelWidth
    height: Theme.roomFor(48, 1)
    x: Screen.virtualX + Screen.desktopAvailableWidth - width - gap
    y: Screen.virtualY + gap
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

        Text {
            anchors { left: parent.left; leftMargin: 13; verticalCenter: parent.verticalCenter }
            text: panel.recording.controller.durationLabel
            textFormat: Text.PlainText
            color: "white"
            font { pixelSize: Theme.fontSmall; weight: Font.DemiBold }
        }
        Button {
            anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
            implicitHeight: Theme.roomFor(28, 1)
            leftPadding: 8
            rightPadding: 8
            destructive: true
            onOverlay: true
            text: qsTr("Stop Recording")
            onClicked: panel.recording.controller.stopFromPanel()
        }
    }
}
