import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// One line of text to type. Besides the text input's own keys: the clear button and a context
// menu, which is made when first asked for.
//   text, placeholderText   as in every text input
//   iconName                an icon before the text
//   errorText               says what is wrong; outlines the field
//   takesMenuKey            shows the context menu by its key too
//   clearable               offers the clear button while there is text
//   textEdited()            the user typed
//   cleared()               the clear button was used
T.TextField {
    id: control

    property string iconName
    property string errorText
    property bool clearable: true
    property bool takesMenuKey: true
    signal cleared()

    implicitWidth: 240
    implicitHeight: Theme.controlHeight
    leftPadding: iconName === "" ? 12 : 36
    rightPadding: clearButton.visible ? 36 : 12
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    hoverEnabled: true
    opacity: enabled ? 1 : 0.38
    color: Theme.text
    selectionColor: Theme.accent
    selectedTextColor: Theme.onAccent
    font { family: Theme.fontFamily; pixelSize: Theme.fontBody }

    Accessible.description: errorText !== "" ? errorText : placeholderText

    onPressed: event => {
        if (event.button === Qt.RightButton)
            menuLoader.popup(event.x, event.y);
    }
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Menu && takesMenuKey) {
            menuLoader.popup(cursorRectangle.x, height);
            event.accepted = true;
        }
    }

    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
        border {
            width: control.activeFocus || control.errorText !== "" ? 2 : 1
            color: control.errorText !== "" ? Theme.danger
                 : control.activeFocus ? Theme.accent
                 : Theme.stroke
        }

        Rectangle {
            anchors.fill: parent
            visible: control.hovered && !control.activeFocus
            radius: parent.radius
            color: Theme.fillHover
        }
        Icon {
            anchors { left: parent.left; leftMargin: 11; verticalCenter: parent.verticalCenter }
            name: control.iconName
            size: 16
            color: control.errorText !== "" ? Theme.danger : Theme.textSecondary
        }
    }

    Text {
        anchors {
            left: parent.left; right: parent.right
            verticalCenter: parent.verticalCenter
            leftMargin: control.leftPadding; rightMargin: control.rightPadding
        }
        visible: control.length === 0 && control.preeditText === ""
        text: control.placeholderText
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: Theme.textSecondary
        font: control.font
    }

    Loader {
        id: clearButton

        anchors { right: parent.right; rightMargin: 4; verticalCenter: parent.verticalCenter }
        visible: control.clearable && control.length > 0 && control.enabled && !control.readOnly
        active: visible
        sourceComponent: IconButton {
            implicitWidth: 28
            iconName: "close"
            iconSize: 14
            text: qsTr("Clear")
            focusPolicy: Qt.NoFocus
            onClicked: {
                control.clear();
                control.forceActiveFocus(Qt.MouseFocusReason);
                control.cleared();
            }
        }
    }

    Loader {
        id: menuLoader

        function popup(x: real, y: real): void {
            active = true;
            (item as Menu).popup(control, x, y);
        }

        active: false
        sourceComponent: Menu {
            MenuItem {
                text: qsTr("Cut")
                shortcutText: "Ctrl+X"
                enabled: control.selectedText !== "" && !control.readOnly
                onTriggered: control.cut()
            }
            MenuItem {
                text: qsTr("Copy")
                shortcutText: "Ctrl+C"
                enabled: control.selectedText !== ""
                onTriggered: control.copy()
            }
            MenuItem {
                text: qsTr("Paste")
                shortcutText: "Ctrl+V"
                enabled: control.canPaste
                onTriggered: control.paste()
            }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Select All")
                shortcutText: "Ctrl+A"
                enabled: control.length > 0
                onTriggered: control.selectAll()
            }
        }
    }
}
