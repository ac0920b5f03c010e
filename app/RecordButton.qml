import QtQuick
import Lumaro.App
import Lumaro.Ui

// The control bar's recording: a menu of the qualities, or the button that stops.
IconButton {
    id: root

    required property RecordingModel recording
    readonly property bool opened: loader.item ? loader.item.visible : false

    onOverlay: true
    iconName: recording.isRecording ? "record-stop" : "record"
    urgent: recording.isRecording
    enabled: recording.isReady
    text: recording.buttonText
    shortcutText: "Ctrl+Shift+R"
    down: pressed || opened
    Accessible.role: recording.isRecording ? Accessible.Button : Accessible.ButtonMenu
    onClicked: {
        if (recording.isRecording) {
            recording.stop();
            return;
        }
        loader.active = true;
        (loader.item as Menu).toggleAbove(root);
    }

    Shortcut {
        sequence: "Ctrl+Shift+R"
        enabled: root.recording.isReady
        onActivated: root.recording.toggle()
    }

    Loader {
        id: loader

        active: false
        sourceComponent: Menu {
            title: root.text

            MenuItem {
                text: root.recording.normalTitle
                shortcutText: "Ctrl+Shift+R"
                onTriggered: root.recording.startNormal()
            }
            MenuItem {
                text: root.recording.hdTitle
                onTriggered: root.recording.startHd()
            }
        }
    }
}
