import QtQuick
import Lumaro.App

// What the help menu opens, made when it is first needed.
Item {
    id: root

    required property MenuCommands commands
    required property HelpModel help

    Loader {
        id: sheet

        active: false
        sourceComponent: ShortcutSheet { help: root.help }
    }
    Loader {
        id: about

        active: false
        sourceComponent: AboutBox { help: root.help }
    }
    Connections {
        target: root.commands

        function onShortcutsRequested() {
            root.help.prepareShortcuts();
            sheet.active = true;
            (sheet.item as ShortcutSheet).open();
        }
        function onAboutRequested() {
            about.active = true;
            (about.item as AboutBox).open();
        }
    }
}
