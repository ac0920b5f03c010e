import QtQuick
import Lumaro.App
import Lumaro.Ui

// The library's form, its questions and its alert, each made when it is first needed.
Item {
    id: root

    required property LocalM3UModel library

    function show(loader: Loader, shown: bool): void {
        if (shown) {
            loader.active = true;
            (loader.item as Dialog).open();
        } else if (loader.item) {
            (loader.item as Dialog).close();
        }
    }

    Loader {
        id: form

        active: false
        sourceComponent: LocalM3UFormDialog {
            id: dialog

            property bool isSaved: false

            editor: root.library.editor
            onOpened: isSaved = false
            // The new link is in the list, wherever the keyboard was before.
            onClosed: {
                if (isSaved)
                    root.library.focusRequested();
            }

            Connections {
                target: root.library.editor

                function onSaved() { dialog.isSaved = true; }
            }
        }
    }
    Loader {
        id: question

        active: false
        sourceComponent: Dialog {
            destructive: true
            onAccepted: root.library.agree()
            onRejected: root.library.disagree()
        }
    }
    Loader {
        id: exportAlert

        active: false
        sourceComponent: Dialog {
            title: qsTr("Could Not Export M3U Playlist")
            cancelText: ""
            onClosed: root.library.closeExportError()
        }
    }

    Connections {
        target: root.library

        function onQuestionChanged() {
            const isAsked = root.library.questionText !== "";
            root.show(question, isAsked);
            // What was asked stays readable while the dialog fades.
            if (isAsked) {
                const dialog = question.item as Dialog;
                dialog.title = root.library.questionTitle;
                dialog.text = root.library.questionText;
                dialog.acceptText = root.library.questionButton;
            }
        }
        function onExportErrorChanged() {
            const isShown = root.library.exportError !== "";
            root.show(exportAlert, isShown);
            if (isShown)
                (exportAlert.item as Dialog).text = root.library.exportError;
        }
    }
    Connections {
        target: root.library.editor

        function onIsOpenChanged() { root.show(form, root.library.editor.isOpen); }
    }
}
