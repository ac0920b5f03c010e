pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// Chooses one of two or three sections. It does not choose by itself: bind `currentIndex` and
// follow `activated(index)`. Enter, Return and Space choose the section that has the focus; the left and
// right arrows choose its neighbour, where the window leaves them to its controls.
//   model         a list of { text, iconName, shortcutText }
//   currentIndex  the chosen section
//   name          what is chosen, for assistive technology
//   activated(index)  the user asks for this section
Item {
    id: root

    property var model: []
    property int currentIndex: 0
    property string name
    signal activated(int index)

    readonly property int count: segments.count
    readonly property real segmentWidth: count > 0 ? (width - 4) / count : 0

    implicitWidth: 116 * Math.max(1, count)
    implicitHeight: Theme.controlHeight

    Accessible.role: Accessible.PageTabList
    Accessible.name: name

    function choose(index: int): void {
        if (index < 0 || index >= count || index === currentIndex)
            return;
        activated(index);
    }
    function stepTo(index: int): void {
        choose(index);
        segments.itemAt(currentIndex)?.forceActiveFocus(Qt.TabFocusReason);
    }

    Keys.onLeftPressed: stepTo(currentIndex - 1)
    Keys.onRightPressed: stepTo(currentIndex + 1)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.fillHover
    }
    Rectangle {
        x: 2 + root.currentIndex * root.segmentWidth
        y: 2
        width: root.segmentWidth
        height: parent.height - 4
        visible: root.count > 0
        radius: Theme.radius - 2
        color: Theme.dark ? Theme.fillPressed : Theme.surface
        border { width: 1; color: Theme.stroke }
        Behavior on x { NumberAnimation { duration: Theme.durationMedium; easing.type: Easing.OutCubic } }
    }

    Repeater {
        id: segments

        model: root.model

        T.AbstractButton {
            id: segment

            required property int index
            required property var modelData
            readonly property bool isCurrent: index === root.currentIndex
            readonly property color foreground: isCurrent || hovered ? Theme.text : Theme.textSecondary

            x: 2 + index * root.segmentWidth
            y: 2
            width: root.segmentWidth
            height: root.height - 4
            text: segment.modelData.text
            focusPolicy: Qt.TabFocus
            hoverEnabled: true
            onClicked: root.choose(index)

            Keys.onReturnPressed: event => { if (!event.isAutoRepeat) segment.clicked(); }
            Keys.onEnterPressed: event => { if (!event.isAutoRepeat) segment.clicked(); }

            Accessible.role: Accessible.PageTab
            Accessible.name: text
            Accessible.selected: isCurrent
            Accessible.onPressAction: if (enabled) clicked()

            contentItem: Item {
                Row {
                    anchors.centerIn: parent
                    spacing: 6

                    Icon {
                        id: sign

                        anchors.verticalCenter: parent.verticalCenter
                        visible: name !== ""
                        name: segment.modelData.iconName ?? ""
                        size: 16
                        color: segment.isCurrent ? Theme.accentText : segment.foreground
                    }
                    Text {
                        width: Math.min(implicitWidth, segment.width - 20 - (sign.visible ? 22 : 0))
                        text: segment.text
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        color: segment.foreground
                        font { pixelSize: Theme.fontBody; weight: Font.Medium }
                    }
                }
            }
            background: FocusRing {
                anchors.margins: -1
                around: Theme.radius - 4
                visible: segment.visualFocus
            }
        }
    }
}
