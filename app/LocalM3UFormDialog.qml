import QtQuick
import Lumaro.App
import Lumaro.Playlist
import Lumaro.Ui

// The form for a link of the library. It stays open until what is in it is right.
Dialog {
    id: dialog

    required property LocalM3UEditor editor

    function errorOf(field: int): string {
        return editor.errorField === field ? editor.errorMessage : "";
    }

    width: Math.min(480, parent ? parent.width - 48 : 480)
    title: editor.isNew ? qsTr("Add Link") : qsTr("Edit Link")
    acceptText: editor.isNew ? qsTr("Add") : qsTr("Save")
    closesOnAccept: false
    initialFocus: nameRow.field
    onAcceptRequested: editor.save()
    onRejected: editor.cancel()

    Flickable {
        id: view

        readonly property Item focusedItem: Window.activeFocusItem

        // Whoever has the keyboard is in sight.
        onFocusedItemChanged: {
            for (let item = focusedItem; item; item = item.parent) {
                if (item.parent !== fields)
                    continue;
                contentY = Math.max(item.y + item.height + Theme.spacing - height, Math.min(contentY, item.y - Theme.spacing), 0);
            }
        }

        width: parent.width
        // In a low window the fields scroll and the buttons stay.
        height: Math.min(contentHeight, Math.max(120, (dialog.parent ? dialog.parent.height : 600) - 176))
        contentHeight: fields.implicitHeight
        interactive: contentHeight > height
        clip: interactive
        boundsBehavior: Flickable.StopAtBounds

        Column {
            id: fields

            width: parent.width
            topPadding: Theme.spacing
            bottomPadding: Theme.spacing
            spacing: Theme.spacing * 2

            LocalM3UFormRow {
                id: nameRow

                width: parent.width
                caption: qsTr("Name")
                placeholderText: qsTr("Channel or video name")
                shown: dialog.editor.name
                errorText: dialog.errorOf(LocalM3UEditor.Name)
                onEdited: text => dialog.editor.name = text
                onAccepted: dialog.editor.save()
            }
            LocalM3UFormRow {
                id: addressRow

                width: parent.width
                caption: qsTr("Address")
                placeholderText: qsTr("M3U8 URL")
                shown: dialog.editor.address
                errorText: dialog.errorOf(LocalM3UEditor.Address)
                onEdited: text => dialog.editor.address = text
                onAccepted: dialog.editor.save()
            }
            LocalM3UFormRow {
                id: logoRow

                width: parent.width
                caption: qsTr("Logo")
                placeholderText: qsTr("Logo URL (optional)")
                shown: dialog.editor.logoAddress
                errorText: dialog.errorOf(LocalM3UEditor.LogoAddress)
                onEdited: text => dialog.editor.logoAddress = text
                onAccepted: dialog.editor.save()
            }
            Button {
                x: 84
                iconName: "open"
                text: qsTr("Choose Logo File…")
                onClicked: dialog.editor.chooseLogoFile()
            }
            LocalM3UFormRow {
                id: countryRow

                width: parent.width
                caption: qsTr("Country")
                placeholderText: qsTr("Country code (for example: TR, US)")
                shown: dialog.editor.countryCode
                errorText: dialog.errorOf(LocalM3UEditor.CountryCode)
                onEdited: text => dialog.editor.countryCode = text
                onAccepted: dialog.editor.save()
            }
            LocalM3UFormRow {
                width: parent.width
                caption: qsTr("Category")
                placeholderText: qsTr("Category (optional)")
                shown: dialog.editor.category
                onEdited: text => dialog.editor.category = text
                onAccepted: dialog.editor.save()
            }
            ErrorLine {
                width: parent.width
                visible: text !== ""
                text: dialog.editor.errorMessage
            }
        }
    }

    Connections {
        target: dialog.editor

        function onErrorChanged() {
            const rows = {
                [LocalM3UEditor.Name]: nameRow,
                [LocalM3UEditor.Address]: addressRow,
                [LocalM3UEditor.LogoAddress]: logoRow,
                [LocalM3UEditor.CountryCode]: countryRow
            };
            const row = rows[dialog.editor.errorField];
            if (row)
                row.field.forceActiveFocus(Qt.TabFocusReason);
        }
    }
}
