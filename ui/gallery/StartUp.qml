import QtQuick
import Lumaro.Ui

// About as many controls as a main window has, for taking the time to the first frame.
Window {
    width: 1120
    height: 700
    visible: true
    color: "black"

    Rectangle {
        width: 340
        height: parent.height
        color: Theme.background

        Column {
            x: 12
            y: 12
            width: parent.width - 24
            spacing: 8

            SegmentedControl {
                width: parent.width
                model: [{ "text": "Network", "iconName": "link" }, { "text": "Local M3U", "iconName": "library" }]
            }
            TextField { width: parent.width; iconName: "link"; placeholderText: "Stream or playlist address" }
            TextField { width: parent.width; iconName: "search"; placeholderText: "Filter channels" }
            Row {
                spacing: 4

                IconButton { iconName: "plus"; text: "Add" }
                IconButton { iconName: "import"; text: "Import" }
                IconButton { iconName: "trash"; text: "Clear" }
                BusyIndicator { size: 20 }
            }
            EmptyState {
                width: parent.width
                iconName: "tv"
                title: "No channels"
                text: "Paste the address of an IPTV playlist, or import an M3U file."
            }
        }
    }

    Row {
        x: 352
        y: 12
        spacing: 4

        IconButton { onOverlay: true; iconName: "sidebar"; text: "Sidebar" }
        TextButton { onOverlay: true; text: "File" }
        TextButton { onOverlay: true; text: "Playback" }
        TextButton { onOverlay: true; text: "View" }
    }

    Rectangle {
        x: 480
        y: 560
        width: 560
        height: 116
        radius: Theme.radiusLarge
        color: Theme.overlay
        border { width: 1; color: Theme.strokeOnOverlay }

        SeekSlider { x: 16; y: 12; width: parent.width - 32; to: 100; value: 30; bufferedEnd: 50 }
        Row {
            x: 16
            y: 48
            spacing: 4

            IconButton { onOverlay: true; iconName: "volume-high"; text: "Mute" }
            Slider { onOverlay: true; value: 0.6 }
            IconButton { onOverlay: true; iconName: "stop"; text: "Stop" }
            IconButton { onOverlay: true; iconName: "skip-back"; text: "Back" }
            IconButton { onOverlay: true; prominent: true; iconName: "play"; text: "Play" }
            IconButton { onOverlay: true; iconName: "skip-forward"; text: "Forward" }
            IconButton { onOverlay: true; iconName: "record"; text: "Record" }
            IconButton { onOverlay: true; iconName: "display-mode"; text: "Display" }
            IconButton { onOverlay: true; iconName: "fullscreen"; text: "Full Screen" }
        }
    }

    EmptyState {
        x: 560
        y: 240
        width: 420
        onOverlay: true
        iconName: "film"
        title: "Nothing is playing"
        text: "Open a file, paste an address, or drop either of them here."
        buttonText: "Open Media…"
    }
    Toast { x: 600; y: 500; text: "" }
}
