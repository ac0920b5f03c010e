import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A time beside the seek bar in figures of one width, or the mark of a live stream, which leads
// to the live edge when clicked.
T.AbstractButton {
    id: root

    property bool isLiveMark: false
    property bool isAtLiveEdge: false

    readonly property bool leadsToLiveEdge: isLiveMark && !isAtLiveEdge
    readonly property string help: qsTr("Go to Live")

    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    enabled: leadsToLiveEdge
    hoverEnabled: true
    focusPolicy: leadsToLiveEdge ? Qt.TabFocus : Qt.NoFocus
    visible: text !== ""
    Accessible.name: text
    Accessible.role: isLiveMark ? Accessible.Button : Accessible.StaticText
    Accessible.description: leadsToLiveEdge ? help : ""
    Accessible.onPressAction: if (enabled) clicked()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) root.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) root.clicked(); }

    onHoveredChanged: hovered && enabled ? ToolTips.show(root, help, "") : ToolTips.hide(root)
    onVisualFocusChanged: visualFocus ? ToolTips.show(root, help, "") : ToolTips.hide(root)

    contentItem: Text {
        text: root.text
        color: root.isLiveMark && root.isAtLiveEdge ? Theme.dangerOnOverlay : Theme.textOnOverlay
        font {
            pixelSize: Theme.fontSmall
            weight: root.isLiveMark ? Font.DemiBold : Font.Normal
        }
        textFormat: Text.PlainText
    }
    background: Item {
        FocusRing {
            visible: root.visualFocus
            onOverlay: true
            around: Theme.radius
        }
    }
}
