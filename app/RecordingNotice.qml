import QtQuick
import Lumaro.App
import Lumaro.Ui

// How the last recording ended: saved, with the file's place, or not, with the reason.
Rectangle {
    id: root

    required property RecordingModel recording

    implicitHeight: column.implicitHeight + Theme.spacing * 6
    radius: Theme.radiusLarge
    color: Theme.overlay
    border { width: 1; color: Theme.strokeOnOverlay }

    // Presses beside the buttons are not clicks on the picture.
    MouseArea { anchors.fill: parent }

    Component.onCompleted: if (!recording.noticeIsError) Announcer.announce(saved)

    Column {
        id: column

        anchors {
            left: parent.left; right: close.left; top: parent.top
            leftMargin: Theme.spacing * 4; rightMargin: Theme.spacing * 2
            topMargin: Theme.spacing * 3
        }
        spacing: Theme.spacing * 2

        ErrorLine {
            width: parent.width
            visible: root.recording.noticeIsError
            onOverlay: true
            text: root.recording.noticeIsError ? root.recording.notice : ""
        }
        Text {
            id: saved

            width: parent.width
            visible: !root.recording.noticeIsError
            text: root.recording.notice
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: Theme.textOnOverlay
            font { pixelSize: Theme.fontBody; weight: Font.Medium }
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        Text {
            width: parent.width
            visible: text !== ""
            text: root.recording.savedPath
            textFormat: Text.PlainText
            elide: Text.ElideMiddle
            color: Theme.textOnOverlay
            opacity: 0.8
            font.pixelSize: Theme.fontSmall
        }
        Button {
            visible: root.recording.savedPath !== ""
            onOverlay: true
            iconName: "open"
            text: qsTr("Show in Folder")
            onClicked: root.recording.showInFolder()
        }
        Button {
            visible: root.recording.offersSettings
            onOverlay: true
            text: qsTr("Open System Settings")
            onClicked: root.recording.openSystemSettings()
        }
    }
    IconButton {
        id: close

        anchors { right: parent.right; top: parent.top; margins: Theme.spacing }
        onOverlay: true
        iconName: "close"
        text: qsTr("Dismiss")
        onClicked: root.recording.dismissNotice()
    }
}
