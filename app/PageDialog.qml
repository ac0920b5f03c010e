import QtQuick
import QtWebEngine
import Lumaro.Ui

// What a page tells or asks the user, over this page only: other tabs and the toolbar stay usable.
// A page waits for the answer. One that goes on can be silenced until it is left.
//   opened()          it may have the keyboard
//   closed(heldKeys)  it has gone; whether it had the keyboard
FocusScope {
    id: root

    readonly property bool isOpen: dialog !== null || login !== null
    // Over the page's size and number of dialogs alike.
    readonly property int mostText: 2000

    property JavaScriptDialogRequest dialog: null
    property AuthenticationDialogRequest login: null
    property string origin
    property int count: 0
    property bool isSilenced: false
    signal opened()
    signal closed(bool heldKeys)

    function ask(request: JavaScriptDialogRequest): void {
        const host = request.securityOrigin.toString();
        if (host !== origin) {
            origin = host;
            count = 0;
            isSilenced = false;
        }
        // A page may not hold the user back.
        if (isSilenced || isOpen) {
            if (request.type === JavaScriptDialogRequest.DialogTypeBeforeUnload)
                request.dialogAccept();
            else
                request.dialogReject();
            return;
        }
        ++count;
        dialog = request;
        answerField.text = request.defaultText.slice(0, mostText);
        (request.type === JavaScriptDialogRequest.DialogTypePrompt ? answerField : acceptButton).focus = true;
        opened();
    }
    function askForLogin(request: AuthenticationDialogRequest): void {
        if (isOpen) {
            request.dialogReject();
            return;
        }
        login = request;
        userField.text = "";
        passwordField.text = "";
        userField.focus = true;
        opened();
    }
    // Whoever asked is gone.
    function withdraw(): void {
        silence.isOn = false;
        if (isOpen)
            answer(false);
    }
    function siteOf(address: string): string {
        try {
            return new URL(address).origin;
        } catch (error) {
            return "";
        }
    }
    // A page may ask until the next one is there, which is at `address`.
    function withdrawOthers(address: url): void {
        if (dialog && siteOf(origin) !== siteOf(address.toString()))
            withdraw();
    }
    function answer(accepted: bool): void {
        const request = dialog;
        const text = answerField.visible ? answerField.text : null;
        const loginRequest = login;
        const heldKeys = activeFocus;
        if (silence.isOn)
            isSilenced = true;
        silence.isOn = false;
        dialog = null;
        login = null;
        if (request) {
            if (!accepted)
                request.dialogReject();
            else if (text !== null)
                request.dialogAccept(text);
            else
                request.dialogAccept();
        } else if (loginRequest) {
            if (accepted)
                loginRequest.dialogAccept(userField.text, passwordField.text);
            else
                loginRequest.dialogReject();
        }
        closed(heldKeys);
    }

    visible: isOpen
    Keys.onEscapePressed: answer(false)

    Rectangle {
        anchors.fill: parent
        color: Theme.scrim
    }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }
    Item {
        id: card

        anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: Theme.spacing * 6 }
        width: Math.min(440, parent.width - 48)
        height: column.implicitHeight + 48
        Accessible.role: Accessible.Dialog
        Accessible.name: heading.text
        Accessible.description: message.text

        Shadow { anchors.fill: parent; radius: 16 }
        Rectangle {
            anchors.fill: parent
            radius: 16
            color: Theme.surfaceRaised
            border { width: 1; color: Theme.stroke }
        }
        Column {
            id: column

            anchors { left: parent.left; right: parent.right; top: parent.top; margins: 24 }
            spacing: 10

            Text {
                id: heading

                width: parent.width
                text: root.login ? qsTr("%1 asks for a name and a password").arg(root.login.url.toString().split("/")[2] ?? "")
                    : root.dialog?.type === JavaScriptDialogRequest.DialogTypeBeforeUnload ? qsTr("Leave this page?")
                    : qsTr("%1 says:").arg(root.origin)
                textFormat: Text.PlainText
                elide: Text.ElideLeft
                color: Theme.text
                font { pixelSize: Theme.fontTitle; weight: Font.DemiBold }
            }
            Text {
                id: message

                width: parent.width
                visible: text !== ""
                text: root.login ? (root.login.realm ?? "").slice(0, 200)
                    : root.dialog?.type === JavaScriptDialogRequest.DialogTypeBeforeUnload
                    ? qsTr("What you have entered there may be lost.")
                    : (root.dialog?.message ?? "").slice(0, root.mostText)
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                maximumLineCount: 12
                elide: Text.ElideRight
                color: Theme.textSecondary
                font.pixelSize: Theme.fontBody
            }
            TextField {
                id: answerField

                width: parent.width
                visible: root.dialog?.type === JavaScriptDialogRequest.DialogTypePrompt
                Accessible.name: message.text
                onAccepted: root.answer(true)
            }
            TextField {
                id: userField

                width: parent.width
                visible: root.login !== null
                placeholderText: qsTr("Name")
                Accessible.name: qsTr("Name")
                onAccepted: passwordField.forceActiveFocus()
            }
            TextField {
                id: passwordField

                width: parent.width
                visible: root.login !== null
                placeholderText: qsTr("Password")
                echoMode: TextInput.Password
                Accessible.name: qsTr("Password")
                onAccepted: root.answer(true)
            }
            Switch {
                id: silence

                visible: root.dialog !== null && root.count > 1
                objectName: "pageDialogSilence"
                text: qsTr("No more from this page")
                onSwitched: isOn = !isOn
            }
            Row {
                anchors.right: parent.right
                topPadding: 6
                spacing: 8

                Button {
                    visible: root.login !== null || root.dialog?.type !== JavaScriptDialogRequest.DialogTypeAlert
                    text: root.dialog?.type === JavaScriptDialogRequest.DialogTypeBeforeUnload ? qsTr("Stay") : qsTr("Cancel")
                    onClicked: root.answer(false)
                }
                Button {
                    id: acceptButton

                    objectName: "pageDialogAccept"
                    primary: true
                    text: root.login ? qsTr("Log In")
                        : root.dialog?.type === JavaScriptDialogRequest.DialogTypeBeforeUnload ? qsTr("Leave") : qsTr("OK")
                    onClicked: root.answer(true)
                }
            }
        }
    }
}
