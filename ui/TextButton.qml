import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A text that can be clicked, without a surface of its own until pointed at: titles of menus and
// quiet actions. Enter and Return activate it.
//   text       the text
//   down       may be set while what it opened is open
//   onOverlay  lies over the picture
T.AbstractButton {
    id: control

    property bool onOverlay: false

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Theme.controlHeight
    leftPadding: 10
    rightPadding: 10
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.38

    Accessible.name: text
    Accessible.onPressAction: if (enabled) clicked()

    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) control.clicked(); }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) control.clicked(); }

    contentItem: Text {
        text: control.text
        textFormat: Text.PlainText
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        color: control.onOverlay ? Theme.textOnOverlay : Theme.text
        font { pixelSize: Theme.fontBody; weight: Font.Medium }
    }
    background: Rectangle {
        radius: Theme.radius
        color: control.onOverlay ? (control.down ? Theme.fillPressedOnOverlay
                                  : control.hovered ? Theme.fillHoverOnOverlay : "transparent")
             : control.down ? Theme.fillPressed
             : control.hovered ? Theme.fillHover : "transparent"

        FocusRing {
            visible: control.visualFocus
            onOverlay: control.onOverlay
        }
    }
}
