import QtQuick
import QtWebEngine
import Lumaro.Ui

// Finds text in the page of `view`. Return and F3 go to the next place, with Shift to the one before;
// Escape ends it.
//   closed(heldKeys)   whether it had the keyboard, which the page may have back
FocusScope {
    id: root

    required property WebEngineView view
    property int matches: 0
    property int match: 0
    signal closed(bool heldKeys)

    function open(): void {
        visible = true;
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
        find(false);
    }
    function close(): void {
        if (!visible)
            return;
        const heldKeys = activeFocus;
        visible = false;
        view.findText("");
        closed(heldKeys);
    }
    function find(backward: bool): void {
        if (visible)
            view.findText(field.text, backward ? WebEngineView.FindBackward : 0);
    }

    visible: false
    width: Math.min(row.implicitWidth + Theme.spacing * 4, parent.width)
    height: Theme.roomFor(48, 1)
    Keys.onEscapePressed: close()

    Connections {
        target: root.view

        function onFindTextFinished(result) {
            root.matches = result.numberOfMatches;
            root.match = result.activeMatch;
        }
        // What was found went with its page.
        function onUrlChanged() { root.close(); }
    }
    Shortcut { sequence: "F3"; enabled: root.visible; onActivated: root.find(false) }
    Shortcut { sequence: "Shift+F3"; enabled: root.visible; onActivated: root.find(true) }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.surfaceRaised
        border { width: 1; color: Theme.stroke }
    }
    // Clicks beside the buttons are not the page's.
    MouseArea { anchors.fill: parent }
    Row {
        id: row

        anchors.centerIn: parent
        spacing: Theme.spacing

        TextField {
            id: field

            objectName: "findField"
            focus: true
            iconName: "search"
            placeholderText: qsTr("Find in Page")
            errorText: text !== "" && root.matches === 0 ? count.text : ""
            Accessible.name: placeholderText
            onTextEdited: root.find(false)
            onCleared: root.find(false)
            Keys.onReturnPressed: event => root.find(event.modifiers & Qt.ShiftModifier)
            Keys.onEnterPressed: event => root.find(event.modifiers & Qt.ShiftModifier)
        }
        Text {
            id: count

            objectName: "findCount"
            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(implicitWidth, Theme.fontBody * 4)
            horizontalAlignment: Text.AlignHCenter
            text: field.text === "" ? "" : root.matches === 0 ? qsTr("Nothing")
                : qsTr("%1 of %2").arg(root.match).arg(root.matches)
            textFormat: Text.PlainText
            color: Theme.textSecondary
            font.pixelSize: Theme.fontBody
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        IconButton {
            iconName: "chevron-down"
            rotation: 180
            text: qsTr("Previous")
            shortcutText: "Shift+F3"
            enabled: root.matches > 0
            onClicked: root.find(true)
        }
        IconButton {
            iconName: "chevron-down"
            text: qsTr("Next")
            shortcutText: "F3"
            enabled: root.matches > 0
            onClicked: root.find(false)
        }
        IconButton {
            iconName: "close"
            text: qsTr("Close")
            shortcutText: "Escape"
            onClicked: root.close()
        }
    }
}
