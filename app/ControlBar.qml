import QtQuick
import Lumaro.App
import Lumaro.Ui

// The transport controls, floating over the picture.
Rectangle {
    id: root

    required property PlayerModel player
    required property MainWindowModel shell
    required property TransportModel transport
    property bool shown: true
    // Further controls, between the volume and the full-screen button.
    default property alias extras: extraControls.data

    readonly property bool inUse: hover.hovered || seekSlider.pressed || volumeSlider.pressed
    // With a short bar of the volume, and the play button in the middle.
    readonly property real leastWidth: transportButtons.implicitWidth + Theme.spacing * 12
        + 2 * Math.max(muteButton.implicitWidth + compactVolume + stopButton.implicitWidth + Theme.spacing * 4, rightButtons.implicitWidth)
    readonly property bool isCompact: width < leastWidth + 2 * (roomyVolume - compactVolume)
    readonly property int compactVolume: 56
    readonly property int roomyVolume: 96

    implicitHeight: column.implicitHeight + Theme.spacing * 5
    radius: Theme.radiusLarge
    color: Theme.overlay
    border { width: 1; color: Theme.strokeOnOverlay }
    opacity: shown ? 1 : 0
    visible: opacity > 0
    Behavior on opacity { NumberAnimation { duration: Theme.durationShort } }

    HoverHandler { id: hover }
    // Presses beside the buttons are not clicks on the picture.
    MouseArea { anchors.fill: parent }

    Column {
        id: column

        anchors {
            left: parent.left; right: parent.right
            verticalCenter: parent.verticalCenter
            leftMargin: Theme.spacing * 4; rightMargin: Theme.spacing * 4
        }
        spacing: Theme.spacing

        // What moves here draws the whole window anew, even while nobody sees it.
        Item {
            width: parent.width
            height: Math.max(seekSlider.implicitHeight, 20)

            TimeText {
                id: positionText

                anchors { left: parent.left; verticalCenter: parent.verticalCenter }
                text: root.visible ? root.transport.positionText : ""
            }
            SeekSlider {
                id: seekSlider

                anchors {
                    left: positionText.right; right: endText.left
                    leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 2
                    verticalCenter: parent.verticalCenter
                }
                enabled: root.transport.canSeek
                live: root.transport.isLive
                from: root.transport.from
                to: root.transport.to
                value: root.visible ? root.transport.position : from
                previewText: root.transport.previewText(hoverValue)
                onCommitted: value => root.player.seek(value)
                Accessible.name: qsTr("Position")
                Accessible.description: root.transport.obstacle
            }
            // A bar that is disabled sees no pointer.
            Item {
                id: seekObstacle

                anchors.fill: seekSlider
                visible: root.transport.obstacle !== ""

                HoverHandler {
                    onHoveredChanged: {
                        if (hovered)
                            ToolTips.show(seekObstacle, root.transport.obstacle, "");
                        else
                            ToolTips.hide(seekObstacle);
                    }
                }
            }
            TimeText {
                id: endText

                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                text: root.visible ? root.transport.endText : ""
                isLiveMark: root.transport.isLive
                isAtLiveEdge: root.transport.isAtLiveEdge
                onClicked: root.transport.goToLiveEdge()
            }
        }

        Item {
            width: parent.width
            height: playButton.implicitHeight

            Row {
                anchors { left: parent.left; verticalCenter: parent.verticalCenter }
                spacing: Theme.spacing

                IconButton {
                    id: muteButton

                    onOverlay: true
                    iconName: root.player.isMuted ? "volume-mute" : root.player.volume < 0.5 ? "volume-low" : "volume-high"
                    text: root.player.isMuted ? qsTr("Unmute") : qsTr("Mute")
                    shortcutText: "Ctrl+M"
                    onClicked: root.player.toggleMute()
                }
                Slider {
                    id: volumeSlider

                    anchors.verticalCenter: parent.verticalCenter
                    width: root.isCompact ? root.compactVolume : root.roomyVolume
                    onOverlay: true
                    from: 0
                    to: 1
                    value: root.player.isMuted ? 0 : root.player.volume
                    onMoved: root.player.setVolume(value)
                    Accessible.name: qsTr("Volume")
                    shortcutText: "Up, Down"
                }
            }

            IconButton {
                id: stopButton

                anchors {
                    right: transportButtons.left; rightMargin: Theme.spacing * 2
                    verticalCenter: parent.verticalCenter
                }
                onOverlay: true
                iconName: "stop"
                text: qsTr("Stop")
                shortcutText: "Ctrl+K"
                onClicked: root.player.stop()
            }
            Row {
                id: transportButtons

                anchors.centerIn: parent
                spacing: Theme.spacing * 2

                IconButton {
                    anchors.verticalCenter: parent.verticalCenter
                    onOverlay: true
                    iconName: "skip-back"
                    text: qsTr("Back 5 Seconds")
                    shortcutText: "Left"
                    onClicked: root.player.skip(-5)
                }
                IconButton {
                    id: playButton

                    prominent: true
                    onOverlay: true
                    iconName: root.player.isPlaying ? "pause" : "play"
                    text: root.player.isPlaying ? qsTr("Pause") : qsTr("Play")
                    shortcutText: "Space"
                    onClicked: root.player.togglePlayback()
                }
                IconButton {
                    anchors.verticalCenter: parent.verticalCenter
                    onOverlay: true
                    iconName: "skip-forward"
                    text: qsTr("Forward 5 Seconds")
                    shortcutText: "Right"
                    onClicked: root.player.skip(5)
                }
            }

            Row {
                id: rightButtons

                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                spacing: Theme.spacing

                Row {
                    id: extraControls

                    spacing: Theme.spacing
                }
                IconButton {
                    onOverlay: true
                    iconName: root.shell.isFullScreen ? "fullscreen-exit" : "fullscreen"
                    text: root.shell.isFullScreen ? qsTr("Exit Full Screen") : qsTr("Enter Full Screen")
                    shortcutText: "F"
                    onClicked: root.shell.isFullScreen = !root.shell.isFullScreen
                }
            }
        }
    }
}
