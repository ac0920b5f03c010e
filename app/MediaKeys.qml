import QtQuick
import Lumaro.App

// A keyboard's media keys, where the desktop leaves them to the window.
Item {
    id: root

    required property RemoteControl remote

    Shortcut { sequence: "Media Play"; onActivated: root.remote.play() }
    Shortcut { sequence: "Media Pause"; onActivated: root.remote.pause() }
    Shortcut { sequence: "Toggle Media Play/Pause"; onActivated: root.remote.playPause() }
    Shortcut { sequence: "Media Stop"; onActivated: root.remote.stop() }
    Shortcut { sequence: "Media Next"; onActivated: root.remote.next() }
    Shortcut { sequence: "Media Previous"; onActivated: root.remote.previous() }
}
