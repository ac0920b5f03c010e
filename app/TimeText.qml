import QtQuick
import Lumaro.Ui

// A time beside the seek bar in figures of one width, or the mark of a live stream, which leads
// to the live edge when clicked.
Text {
    id: root

    property bool isLiveMark: false
    property bool isAtLiveEdge: false
    signal clicked()

    color: isLiveMark && isAtLiveEdge ? Theme.dangerOnOverlay : Theme.textOnOverlay
    font {
        pixelSize: Theme.fontSmall
        weight: isLiveMark ? Font.DemiBold : Font.Normal
    }
    textFormat: Text.PlainText

    TapHandler {
        enabled: root.isLiveMark && !root.isAtLiveEdge
        onTapped: root.clicked()
    }
}
