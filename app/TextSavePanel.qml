import QtQuick
import QtQuick.Dialogs
import Lumaro.App
import Lumaro.Ui

// The panel for naming a file to write that asks for one text more, which no desktop's panel does.
Dialog {
    id: dialog

    required property QuickFilePanels panels
    property url folder
    property bool isAnswered: false

    function save(): void {
        if (name.text.trim() === "")
            return;
        panels.accessoryText = accessory.text;
        isAnswered = true;
        close();
    }

    width: Math.min(480, parent ? parent.width - 48 : 480)
    title: panels.title
    acceptText: panels.prompt
    acceptEnabled: name.text.trim() !== ""
    closesOnAccept: false
    initialFocus: name
    onAboutToShow: {
        isAnswered = false;
        folder = panels.folder;
        name.text = panels.proposedName;
        accessory.text = panels.accessoryText;
        name.select(0, Math.max(0, name.text.lastIndexOf(".")));
    }
    onAcceptRequested: save()
    // Only then: what is recorded shall not show the panel fading.
    onClosed: isAnswered ? panels.accept(panels.fileIn(folder, name.text)) : panels.reject()

    FolderDialog {
        id: folderPanel

        title: qsTr("Choose a Folder")
        currentFolder: dialog.folder
        onAccepted: dialog.folder = selectedFolder
    }

    Column {
        width: parent.width
        topPadding: Theme.spacing
        spacing: Theme.spacing * 3

        TextField {
            id: name

            width: parent.width
            onAccepted: dialog.save()
            Accessible.name: qsTr("Name")
        }
        Item {
            width: parent.width
            height: change.height

            Icon {
                id: folderIcon

                anchors.verticalCenter: parent.verticalCenter
                name: "open"
                size: 16
                color: Theme.textSecondary
            }
            Text {
                anchors {
                    left: folderIcon.right; right: change.left
                    leftMargin: Theme.spacing * 2; rightMargin: Theme.spacing * 2
                    verticalCenter: parent.verticalCenter
                }
                text: dialog.panels.pathOf(dialog.folder)
                textFormat: Text.PlainText
                elide: Text.ElideMiddle
                color: Theme.textSecondary
                font.pixelSize: Theme.fontSmall
            }
            TextButton {
                id: change

                anchors { right: parent.right; rightMargin: -Theme.spacing * 2 }
                text: qsTr("Choose Folder…")
                onClicked: folderPanel.open()
            }
        }
        Column {
            width: parent.width
            topPadding: 8
            bottomPadding: 8
            spacing: 5

            Text {
                text: dialog.panels.accessoryLabel
                textFormat: Text.PlainText
                color: Theme.text
                font { pixelSize: Theme.fontSmall; weight: Font.Medium }
            }
            TextField {
                id: accessory

                width: 190
                placeholderText: dialog.panels.accessoryPlaceholder
                onAccepted: dialog.save()
                Accessible.name: dialog.panels.accessoryLabel
                Accessible.description: dialog.panels.accessoryToolTip

                HoverHandler {
                    onHoveredChanged: hovered ? ToolTips.show(accessory, dialog.panels.accessoryToolTip, "") : ToolTips.hide(accessory)
                }
            }
            Text {
                width: parent.width
                text: dialog.panels.accessoryHint
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.textSecondary
                font.pixelSize: Theme.fontSmall
            }
        }
    }
}
