import QtQuick
import QtQuick.Templates as T
import Lumaro.Ui

// A question in the middle of the window. Enter activates the button with the focus, which at
// first is the main one, or Cancel where something would be lost; Escape cancels. Make it in a
// Loader when it is first needed, and follow accepted() and rejected().
//   title, text   the question
//   acceptText    the main button's text
//   cancelText    the other button's; empty leaves it out
//   destructive   accepting loses something
//   initialFocus  has the focus at first instead of a button
//   acceptEnabled  the main button can be used
//   closesOnAccept, acceptRequested()   without the first, the main button only asks by the second
//   further items lie between the text and the buttons
T.Dialog {
    id: control

    property string text
    property string acceptText: qsTr("OK")
    property string cancelText: qsTr("Cancel")
    property bool destructive: false
    property Item initialFocus: null
    property bool acceptEnabled: true
    property bool closesOnAccept: true
    signal acceptRequested()
    default property alias extras: extraItems.data

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.round((parent.height - height) / 2) : 0
    width: Math.min(Math.max(400, buttons.implicitWidth + leftPadding + rightPadding), parent ? parent.width - 48 : 400)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: 24
    margins: 16
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape

    onAboutToShow: {
        before.remember(contentItem);
        const first = destructive && cancelText !== "" ? cancelButton : acceptButton;
        (initialFocus ?? first).forceActiveFocus(Qt.TabFocusReason);
    }
    onClosed: before.giveBack(contentItem)

    readonly property FocusReturn before: FocusReturn {}

    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.durationShort }
        NumberAnimation { property: "scale"; from: 0.97; to: 1; duration: Theme.durationMedium; easing.type: Easing.OutCubic }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; to: 0; duration: Theme.durationShort }
    }

    T.Overlay.modal: Rectangle {
        color: Theme.scrim
        Behavior on opacity { NumberAnimation { duration: Theme.durationShort } }

        // What is dropped goes no further: the question was asked about what is there now.
        DropArea {
            anchors.fill: parent
            onEntered: drag => drag.accept(Qt.IgnoreAction)
            onDropped: drop => drop.accepted = false
        }
    }

    contentItem: FocusScope {
        implicitHeight: column.implicitHeight
        focus: true

        Accessible.role: Accessible.Dialog
        Accessible.name: control.title
        Accessible.description: control.text

        Column {
            id: column

            width: parent.width
            spacing: 8

            Text {
                width: parent.width
                visible: text !== ""
                text: control.title
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.text
                font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
            }
            Text {
                width: parent.width
                visible: text !== ""
                text: control.text
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                lineHeight: 1.3
                color: Theme.textSecondary
                font.pixelSize: Theme.fontBody
            }
            Column {
                id: extraItems

                width: parent.width
                topPadding: 4
                visible: implicitHeight > 4
            }
            Item {
                width: parent.width
                height: buttons.implicitHeight + 16

                Row {
                    id: buttons

                    anchors { right: parent.right; bottom: parent.bottom }
                    spacing: 8

                    Button {
                        id: cancelButton

                        visible: text !== ""
                        text: control.cancelText
                        onClicked: control.reject()
                    }
                    Button {
                        id: acceptButton

                        enabled: control.acceptEnabled
                        text: control.acceptText
                        primary: !control.destructive
                        destructive: control.destructive
                        onClicked: control.closesOnAccept ? control.accept() : control.acceptRequested()
                    }
                }
            }
        }
    }
    background: Item {
        Shadow { anchors.fill: parent; radius: 16 }
        Rectangle {
            anchors.fill: parent
            radius: 16
            color: Theme.surfaceRaised
            border { width: 1; color: Theme.stroke }
        }
    }
}
