import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// Every control in its states. Keys outside text fields: T switches the theme, M opens the menu,
// D and E the dialogs, N shows a toast.
Window {
    id: window

    readonly property string longText: "A very long text that has to be cut somewhere because there is no room for all of it"
    readonly property list<string> iconNames: [
        "play", "pause", "stop", "record", "record-stop", "skip-back", "skip-forward", "volume-high", "volume-low",
        "volume-mute", "fullscreen", "fullscreen-exit", "sidebar", "menu", "open", "link",
        "search", "close", "plus", "chevron-right", "chevron-down", "tv", "library", "film",
        "display-mode", "alert", "trash", "edit", "download", "export", "import",
        "more", "check", "star", "reload"
    ]

    width: 1400
    height: 1000
    visible: true
    color: Theme.background
    title: "Controls"

    Item {
        id: keys

        focus: true
        Keys.onPressed: event => {
            switch (event.key) {
            case Qt.Key_T: Theme.dark = !Theme.dark; break;
            case Qt.Key_M: menu.popup(menuButton, 0, menuButton.height + 4); break;
            case Qt.Key_D: dialog.open(); break;
            case Qt.Key_E: destructiveDialog.open(); break;
            case Qt.Key_N: toast.text = toast.text === "" ? "Saved to Local M3U" : ""; break;
            default: return;
            }
            event.accepted = true;
        }
    }

    Column {
        x: 32
        y: 24
        width: 640
        spacing: 24

        Section {
            title: "Icons, 20 and 32"

            Grid {
                columns: 17
                spacing: 12
                Repeater {
                    model: window.iconNames
                    Icon {
                        required property string modelData
                        name: modelData
                        color: Theme.text
                    }
                }
            }
            Grid {
                columns: 14
                spacing: 12
                Repeater {
                    model: window.iconNames
                    Icon {
                        required property string modelData
                        name: modelData
                        size: 32
                        color: Theme.text
                    }
                }
            }
        }

        Section {
            title: "Icon buttons: plain, checked, pressed, disabled, prominent"

            Row {
                spacing: 8
                IconButton { iconName: "plus"; text: "Add Channel"; shortcutText: "Ctrl+N" }
                IconButton { iconName: "sidebar"; text: "Hide Sidebar"; checked: true }
                IconButton { iconName: "trash"; text: "Delete"; down: true }
                IconButton { iconName: "reload"; text: "Reload"; enabled: false }
                IconButton { prominent: true; iconName: "play"; text: "Play"; shortcutText: "Space" }
                IconButton { prominent: true; iconName: "pause"; text: "Pause"; enabled: false }
            }
        }

        Section {
            title: "Buttons: plain, icon, primary, destructive, disabled, cut"

            Row {
                spacing: 8
                Button { text: "Cancel" }
                Button { text: "Open Media…"; iconName: "open"; shortcutText: "Ctrl+O" }
                Button { text: "Save"; primary: true }
                Button { text: "Delete"; destructive: true }
                Button { text: "Save"; primary: true; enabled: false }
                Button { width: 140; text: window.longText }
            }
            Row {
                spacing: 8
                Button { text: "Download"; iconName: "download"; primary: true }
                Button { text: "Pressed"; down: true }
                Button { text: "Pressed"; primary: true; down: true }
                TextButton { text: "File" }
                TextButton { text: "Playback"; down: true }
                TextButton { text: "View"; enabled: false }
            }
        }

        Section {
            title: "Text fields: empty, text, error, disabled, long"

            Row {
                spacing: 8
                TextField { width: 312; iconName: "link"; placeholderText: "Stream or playlist address" }
                TextField { width: 312; iconName: "link"; text: "https://example.com/live.m3u8" }
            }
            Row {
                spacing: 8
                TextField { width: 312; text: "htp:/example"; errorText: "Not an address." }
                TextField { width: 152; placeholderText: "Disabled"; enabled: false }
                TextField { id: longField; width: 152; iconName: "search"; text: window.longText; Component.onCompleted: cursorPosition = 0 }
            }
        }

        Section {
            title: "Segments"

            SegmentedControl {
                id: segments

                width: 320
                model: [{ "text": "Network", "iconName": "link" }, { "text": "Local M3U", "iconName": "library" }]
                onActivated: index => currentIndex = index
            }
            SegmentedControl {
                width: 320
                currentIndex: 1
                model: [{ "text": "Channels" }, { "text": "Downloads" }, { "text": "A long section name" }]
                onActivated: index => currentIndex = index
            }
        }

        Section {
            title: "Menu, busy, sliders"

            Row {
                spacing: 16
                Button { id: menuButton; text: "Menu"; onClicked: menu.popup(menuButton, 0, height + 4) }
                BusyIndicator { anchors.verticalCenter: parent.verticalCenter }
                BusyIndicator { anchors.verticalCenter: parent.verticalCenter; size: 20 }
                Slider { anchors.verticalCenter: parent.verticalCenter; value: 0.6 }
                Slider { anchors.verticalCenter: parent.verticalCenter; value: 0.6; enabled: false }
            }
            SeekSlider { width: 560; onOverlay: false; to: 100; value: 30; bufferedEnd: 60; previewText: Math.round(hoverValue) + " s"; onCommitted: v => value = v }
            SeekSlider { width: 560; onOverlay: false; enabled: false; to: 100; value: 30 }
        }
    }

    // The picture: half dark, half white, to try the overlays on both.
    Rectangle {
        id: picture

        x: 704
        y: 24
        width: 664
        height: 560
        radius: Theme.radiusLarge
        gradient: Gradient {
            GradientStop { position: 0; color: "#20242c" }
            GradientStop { position: 0.45; color: "#7f8a99" }
            GradientStop { position: 1; color: "#ffffff" }
        }

        EmptyState {
            anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: 24 }
            width: 320
            onOverlay: true
            iconName: "film"
            title: "Nothing is playing"
            text: "Open a file, paste an address, or drop either of them here."
            buttonText: "Open Media…"
        }
        BusyIndicator { x: 24; y: 24; onOverlay: true }

        Rectangle {
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 150 }
            width: 632
            height: 56
            radius: Theme.radiusLarge
            color: Theme.overlay
            border { width: 1; color: Theme.strokeOnOverlay }

            Row {
                x: 12
                anchors.verticalCenter: parent.verticalCenter
                spacing: 4
                IconButton { onOverlay: true; iconName: "sidebar"; text: "Hide Sidebar"; shortcutText: "Ctrl+B"; checked: true }
                TextButton { onOverlay: true; text: "File" }
                TextButton { onOverlay: true; text: "Playback"; down: true }
                IconButton { onOverlay: true; iconName: "more"; text: "More"; down: true }
                IconButton { onOverlay: true; iconName: "record"; text: "Record"; enabled: false }
                Button { onOverlay: true; text: "Open Media…" }
                Text { anchors.verticalCenter: parent.verticalCenter; leftPadding: 8; text: "Secondary"; color: Theme.textSecondaryOnOverlay; font.pixelSize: Theme.fontSmall }
                Text { anchors.verticalCenter: parent.verticalCenter; leftPadding: 8; text: "Error"; color: Theme.dangerOnOverlay; font.pixelSize: Theme.fontSmall }
            }
        }
        Toast {
            id: toast

            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 220 }
            text: "Saved to Local M3U"
        }

        Rectangle {
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 16 }
            width: 632
            height: 108
            radius: Theme.radiusLarge
            color: Theme.overlay
            border { width: 1; color: Theme.strokeOnOverlay }

            Text { x: 16; y: 14; text: "0:30"; color: Theme.textOnOverlay; font.pixelSize: Theme.fontSmall }
            Text { x: parent.width - width - 16; y: 14; text: "1:40"; color: Theme.textOnOverlay; font.pixelSize: Theme.fontSmall }
            SeekSlider { x: 60; y: 12; width: parent.width - 120; to: 100; value: 30; bufferedEnd: 55; previewText: "0:" + Math.round(hoverValue); onCommitted: v => value = v }
            Row {
                x: 16
                y: 54
                spacing: 4
                IconButton { onOverlay: true; iconName: "volume-high"; text: "Mute"; shortcutText: "Ctrl+M" }
                Slider { anchors.verticalCenter: parent.verticalCenter; onOverlay: true; value: 0.6 }
            }
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                y: 48
                spacing: 8
                IconButton { anchors.verticalCenter: parent.verticalCenter; onOverlay: true; iconName: "stop"; text: "Stop" }
                IconButton { anchors.verticalCenter: parent.verticalCenter; onOverlay: true; iconName: "skip-back"; text: "Back 5 Seconds"; shortcutText: "Left" }
                IconButton { onOverlay: true; prominent: true; iconName: playing ? "pause" : "play"; text: playing ? "Pause" : "Play"; shortcutText: "Space"; onClicked: playing = !playing; property bool playing: false }
                IconButton { anchors.verticalCenter: parent.verticalCenter; onOverlay: true; iconName: "skip-forward"; text: "Forward 5 Seconds"; shortcutText: "Right" }
            }
            Row {
                anchors { right: parent.right; rightMargin: 16 }
                y: 48
                height: 48
                spacing: 4
                IconButton { anchors.verticalCenter: parent.verticalCenter; onOverlay: true; iconName: "display-mode"; text: "Display Mode" }
                IconButton { anchors.verticalCenter: parent.verticalCenter; onOverlay: true; iconName: "fullscreen"; text: "Enter Full Screen"; shortcutText: "F" }
            }
        }
    }

    Rectangle {
        x: 704
        y: 608
        width: 320
        height: 360
        radius: Theme.radiusLarge
        color: Theme.surface
        border { width: 1; color: Theme.stroke }

        EmptyState {
            anchors.centerIn: parent
            width: 240
            iconName: "tv"
            title: "No channels"
            text: "Paste the address of an IPTV playlist, or import an M3U file."
            buttonText: "Import M3U Playlist…"
        }
    }
    Rectangle {
        x: 1048
        y: 608
        width: 320
        height: 360
        radius: Theme.radiusLarge
        color: Theme.surface
        border { width: 1; color: Theme.stroke }

        ListView {
            anchors { fill: parent; margins: 8 }
            clip: true
            model: 40
            delegate: Text {
                required property int index
                height: 32
                leftPadding: 8
                verticalAlignment: Text.AlignVCenter
                text: "Channel " + (index + 1)
                color: Theme.text
                font.pixelSize: Theme.fontBody
            }
            T.ScrollBar.vertical: ScrollBar { policy: T.ScrollBar.AlwaysOn }
        }
    }

    Menu {
        id: menu

        MenuItem { text: "Open Media…"; iconName: "open"; shortcutText: "Ctrl+O" }
        MenuItem { text: "Import M3U Playlist…"; iconName: "import"; shortcutText: "Ctrl+I" }
        MenuSeparator {}
        MenuItem { text: "Always on Top"; checkable: true; checked: true }
        MenuItem { text: "Reload"; iconName: "reload"; shortcutText: "F5"; enabled: false }
        MenuItem { text: window.longText; iconName: "film" }
        MenuSeparator {}
        MenuItem { text: "Delete"; iconName: "trash"; destructive: true }
    }
    Dialog {
        id: dialog

        title: "Rename the channel?"
        text: "The name is only changed in this list."
        acceptText: "Rename"

        TextField { width: parent.width; text: "News" }
    }
    Dialog {
        id: destructiveDialog

        title: "Delete 12 channels?"
        text: "They are removed from Local M3U. This cannot be undone."
        acceptText: "Delete"
        destructive: true
    }
}
