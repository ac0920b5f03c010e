import QtQuick
import Lumaro.App
import Lumaro.Ui

// One menu of the application: its title, the pop-up with its commands, and their shortcuts,
// which work whether or not the menu was ever opened.
Item {
    id: root

    required property string title
    required property list<MenuCommand> commands
    readonly property bool opened: loader.item ? loader.item.visible : false

    implicitWidth: button.implicitWidth
    implicitHeight: button.implicitHeight

    function toggle(): void {
        loader.active = true;
        (loader.item as Menu).toggleBelow(root);
    }

    TextButton {
        id: button

        onOverlay: true
        text: root.title
        down: root.opened
        onClicked: root.toggle()
    }

    Repeater {
        model: root.commands

        Item {
            id: shortcutHost

            required property MenuCommand modelData

            Shortcut {
                sequence: shortcutHost.modelData.shortcut
                enabled: shortcutHost.modelData.shortcut !== "" && shortcutHost.modelData.isEnabled
                onActivated: shortcutHost.modelData.trigger()
            }
        }
    }

    Loader {
        id: loader

        active: false
        sourceComponent: Menu {
            id: menu

            // A Repeater's items and menus among them would not keep their order.
            Component.onCompleted: {
                for (let i = 0; i < root.commands.length; ++i) {
                    const command = root.commands[i];
                    if (!command.opensMenu) {
                        addItem(itemComponent.createObject(contentItem, {modelData: command}));
                        continue;
                    }
                    addMenu(menuComponent.createObject(menu, {command: command}));
                    itemAt(count - 1).startsGroup = command.startsGroup;
                }
            }
        }
    }

    Component {
        id: itemComponent

        MenuItem {
            required property MenuCommand modelData

            text: modelData.title
            shortcutText: modelData.shownKeys
            startsGroup: modelData.startsGroup
            enabled: modelData.isEnabled
            checkable: modelData.isCheckable
            checked: modelData.isChecked
            onTriggered: modelData.trigger()
        }
    }
    Component {
        id: menuComponent

        Menu {
            id: submenu

            required property MenuCommand command

            title: command.title

            Repeater {
                model: submenu.command.choices
                delegate: itemComponent
            }
        }
    }
}
