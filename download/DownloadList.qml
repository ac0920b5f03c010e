pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Download
import Lumaro.Ui

// All downloads since the program was started. Its height follows them, up to maximumHeight.
ListView {
    id: root

    required property M3U8DownloadManager manager
    required property real maximumHeight

    implicitHeight: Math.min(contentHeight, maximumHeight)
    clip: contentHeight > height
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds

    T.ScrollBar.vertical: ScrollBar {}

    delegate: DownloadRow {
        required property url url

        width: root.width - (root.interactive ? Theme.spacing * 3 : 0)
        onStopped: root.manager.stop(url)
        onRevealed: root.manager.openDownloadedFileLocation(url)
    }
}
