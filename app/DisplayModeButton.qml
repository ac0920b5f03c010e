import QtQuick
import Lumaro.App
import Lumaro.Ui

// The control bar's menu of the display modes.
IconButton {
    id: root

    required property list<MenuCommand> choices
    readonly property bool opened: loader.item ? loader.item.visible : false

    onOverlay: true
    iconName: "display-mode"
    text: qsTr("Video display mode")
    shortcutText: "Ctrl+1 … Ctrl+5"
    Accessible.description: chosenTitle()
    checked: choices.length > 0 && !choices[0].isChecked
    down: pressed || opened
    Accessible.role: Accessible.ButtonMenu
    onClicked: {
        loader.active = true;
        (loader.item as Menu).toggleAbove(root);
    }

    function chosenTitle(): string {
        for (let i = 0; i < choices.length; ++i) {
            if (choices[i].isChecked)
                return choices[i].title;
        }
        return "";
    }

    Loader {
        id: loader

        active: false
        sourceComponent: Menu {
            title: root.text

            Repeater {
                model: root.choices

                MenuItem {
                    required property MenuCommand modelData

                    text: modelData.title
                    shortcutText: modelData.shortcut
                    checkable: true
                    checked: modelData.isChecked
                    onTriggered: modelData.trigger()
                }
            }
        }
    }
}
