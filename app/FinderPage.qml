import QtQuick
import QtWebEngine
import Lumaro.App
import Lumaro.Finder
import Lumaro.Platform.WebEngine
import Lumaro.Ui

// One tab's pages, and what is shown in their place or above them: a page that could not be loaded or
// whose process is gone, a server that is not who it claims to be, a page that asks for more than it
// may.
FocusScope {
    id: root

    // Set once.
    property SnifferManager manager: null
    required property SnifferViewModel finder
    required property EngineProfile engineProfile
    required property bool isWindowShown
    readonly property bool isFullScreen: view.isFullScreen
    readonly property alias hasCrashed: view.hasCrashed
    readonly property alias refusedAddress: view.refusedAddress
    readonly property alias hasFailed: view.hasFailed
    // The page waits for an answer.
    readonly property alias isAsking: dialog.isOpen

    function zoom(by: int): void {
        view.zoomFactor = by === 0 ? 1 : Math.max(0.3, Math.min(3, view.zoomFactor * Math.pow(1.1, by)));
    }
    function leaveFullScreen(): void { view.fullScreenCancelled(); }
    function find(): void { findBar.open(); }
    // Has `part` get the keyboard when the page does; at once if `take` and the page shows.
    function focusOn(part: Item, take: bool): void {
        part.focus = true;
        if (take && visible)
            part.forceActiveFocus();
    }
    // What the page before wanted to know.
    function forgetQuestions(): void {
        view.questions = [];
        dialog.withdraw();
    }

    focus: true
    onManagerChanged: finder.attach(manager, view.page)
    // The engine hands on only to the view's parent what the page does with no key.
    Keys.onPressed: event => event.accepted = root.finder.takeKey(event.text)

    EngineView {
        id: view

        property bool hasCrashed: false
        // The engine's own page about it knows less than the line below the address.
        property bool hasFailed: false
        property string refusedAddress
        property string refusal
        // What pages ask for, the oldest first.
        property var questions: []
        // The files that it asks for, by their numbers.
        property var uploads: ({})

        function answer(allowed: bool): void {
            const question = questions[0];
            questions = questions.slice(1);
            answerPermission(question.origin, question.feature, allowed);
        }
        function wish(feature: int): string {
            switch (feature) {
            case WebEngineView.MediaAudioCapture: return qsTr("%1 wants to use the microphone.");
            case WebEngineView.MediaVideoCapture: return qsTr("%1 wants to use the camera.");
            case WebEngineView.MediaAudioVideoCapture: return qsTr("%1 wants to use the camera and the microphone.");
            case WebEngineView.Geolocation: return qsTr("%1 wants to know where you are.");
            case WebEngineView.Notifications: return qsTr("%1 wants to show notifications.");
            default: return qsTr("%1 wants to see your screen.");
            }
        }

        anchors.fill: parent
        focus: true
        visible: !failure.isNeeded
        engineProfile: root.engineProfile
        messageHandlers: root.finder.messageHandlers
        backgroundColor: loading && url.toString() === "" ? Theme.background : "white"

        // Hidden, it says nothing, whatever plays on.
        audioMuted: !root.isWindowShown

        onPermissionRequested: (origin, feature) => {
            const known = questions.some(q => q.origin === origin && q.feature === feature);
            // A page that goes on asking is not answered.
            if (known || questions.length >= 4)
                answerPermission(origin, feature, false);
            else
                questions = questions.concat([{ origin: origin, feature: feature }]);
        }
        // Also of what a page only contains, which is then left out of it.
        onCertificateRefused: (address, reason) => refusal = reason
        onCrashed: {
            root.forgetQuestions();
            hasCrashed = true;
        }
        onLoadingChanged: info => {
            if (info.status === WebEngineView.LoadStartedStatus) {
                hasCrashed = false;
                hasFailed = false;
                root.forgetQuestions();
                refusedAddress = "";
                return;
            }
            if (info.status === WebEngineView.LoadFailedStatus
                    && info.errorDomain === WebEngineView.CertificateErrorDomain)
                refusedAddress = info.url.toString();
            if (dialog.login && info.status !== WebEngineView.LoadSucceededStatus)
                dialog.withdraw();
            dialog.withdrawOthers(url);
        }
        onQuestionsChanged: unarmed.restart()
        onDialogRequested: request => dialog.ask(request)
        onLoginRequested: request => dialog.askForLogin(request)
        onUploadRequested: request => {
            if (request.mode === FileDialogRequest.FileModeOpen || request.mode === FileDialogRequest.FileModeOpenMultiple)
                uploads[root.finder.beginUpload()] = request;
            else
                request.dialogReject();
        }
        onMenuRequested: request => {
            pageMenu.link = request.linkUrl;
            pageMenu.hasSelection = request.selectedText !== "";
            pageMenu.isEditable = request.isContentEditable;
            pageMenu.popup(request.position.x, request.position.y);
        }
        onFullScreenRequested: request => request.accept()
        onIsFullScreenChanged: if (isFullScreen) hint.restart()
    }

    // A page that fills the screen could show anything, a desktop or another site's address as well.
    Rectangle {
        anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; topMargin: Theme.spacing * 8 }
        width: hintText.implicitWidth + Theme.spacing * 8
        height: hintText.implicitHeight + Theme.spacing * 4
        visible: hint.running && view.isFullScreen
        radius: Theme.radiusLarge
        color: Theme.overlay

        Text {
            id: hintText

            anchors.centerIn: parent
            text: qsTr("%1 fills the screen. Press Escape to leave.").arg(view.url.toString().split("/")[2] ?? "")
            textFormat: Text.PlainText
            color: Theme.textOnOverlay
            font.pixelSize: Theme.fontBody
        }
        Timer {
            id: hint

            interval: 4000
        }
    }

    Connections {
        target: view.page

        function onLoadFailed() { view.hasFailed = true; }
    }

    Rectangle {
        anchors { left: parent.left; top: parent.top }
        width: parent.width * view.loadProgress / 100
        height: 2
        visible: root.manager?.isLoading ?? false
        color: Theme.accent
    }

    FocusScope {
        id: failure

        readonly property bool isRefused: view.refusedAddress !== ""
        readonly property bool isNeeded: view.hasCrashed || view.hasFailed || isRefused

        anchors.fill: parent
        visible: isNeeded
        // Keys reach no hidden page.
        onIsNeededChanged: (isNeeded ? failure : view).focus = true
        onActiveFocusChanged: focusButton()
        onVisibleChanged: focusButton()

        function focusButton(): void {
            if (visible && activeFocus)
                wayOut.nextItemInFocusChain().forceActiveFocus();
        }

        Rectangle {
            anchors.fill: parent
            color: Theme.background
        }
        EmptyState {
            id: wayOut

            anchors.centerIn: parent
            width: Math.min(parent.width - 64, 420)
            iconName: "alert"
            title: failure.isRefused ? qsTr("This connection is not safe")
                : view.hasCrashed ? qsTr("This page has crashed") : qsTr("This page could not be loaded")
            text: failure.isRefused
                ? qsTr("The server at %1 could not prove who it is, so nothing was loaded from it. (%2)")
                    .arg(view.refusedAddress).arg(view.refusal)
                : view.hasCrashed ? qsTr("Other tabs are not affected.") : ""
            buttonText: view.hasCrashed ? qsTr("Reload") : qsTr("Try Again")
            onButtonClicked: {
                view.refusedAddress = "";
                view.hasCrashed = false;
                view.hasFailed = false;
                root.manager.reload();
            }
        }
    }

    Rectangle {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: Theme.roomFor(48, 1)
        visible: view.questions.length > 0
        color: Theme.surfaceRaised

        Text {
            anchors {
                left: parent.left; right: allow.left; verticalCenter: parent.verticalCenter
                leftMargin: Theme.spacing * 4; rightMargin: Theme.spacing * 3
            }
            text: view.questions.length > 0
                ? view.wish(view.questions[0].feature).arg(view.questions[0].origin) : ""
            textFormat: Text.PlainText
            // Who asks is told by the end of a host.
            elide: Text.ElideLeft
            color: Theme.text
            font.pixelSize: Theme.fontBody
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        // A click that was meant for the page is no answer.
        Timer {
            id: unarmed

            interval: 500
        }
        Button {
            id: allow

            enabled: !unarmed.running

            anchors { right: block.left; rightMargin: Theme.spacing * 2; verticalCenter: parent.verticalCenter }
            text: qsTr("Allow")
            onClicked: view.answer(true)
        }
        Button {
            id: block

            objectName: "blockButton"
            anchors { right: parent.right; rightMargin: Theme.spacing * 3; verticalCenter: parent.verticalCenter }
            text: qsTr("Block")
            primary: true
            onClicked: view.answer(false)
        }
    }

    FindBar {
        id: findBar

        anchors { right: parent.right; top: parent.top; margins: Theme.spacing * 2 }
        view: view
        onClosed: heldKeys => root.focusOn(view, heldKeys)
    }

    Connections {
        target: root.finder

        function onUploadChosen(upload: int, path: string) {
            const request = view.uploads[upload];
            if (!request)
                return;
            delete view.uploads[upload];
            if (path === "")
                request.dialogReject();
            else
                request.dialogAccept([path]);
        }
    }

    PageDialog {
        id: dialog

        objectName: "pageDialog"
        anchors.fill: parent
        onOpened: root.focusOn(dialog, true)
        onClosed: heldKeys => root.focusOn(view, heldKeys)
    }

    Loader {
        id: pageMenu

        // The request goes before the menu does.
        property url link
        property bool hasSelection: false
        property bool isEditable: false

        function popup(x: real, y: real): void {
            active = true;
            (item as Menu).popup(root, x, y);
        }

        active: false
        sourceComponent: Menu {
            MenuItem {
                text: qsTr("Back")
                iconName: "back"
                shortcutText: "Alt+Left"
                enabled: view.canGoBack
                onTriggered: root.manager.goBack()
            }
            MenuItem {
                text: qsTr("Forward")
                iconName: "forward"
                shortcutText: "Alt+Right"
                enabled: view.canGoForward
                onTriggered: root.manager.goForward()
            }
            MenuItem {
                text: qsTr("Reload")
                iconName: "reload"
                shortcutText: "Ctrl+R"
                onTriggered: root.manager.reload()
            }
            MenuItem {
                text: qsTr("Open Link in New Tab")
                iconName: "plus"
                startsGroup: true
                enabled: pageMenu.link.toString() !== ""
                onTriggered: root.finder.openInNewTab(pageMenu.link)
            }
            MenuItem {
                text: qsTr("Copy Link Address")
                iconName: "link"
                enabled: pageMenu.link.toString() !== ""
                onTriggered: view.triggerWebAction(WebEngineView.CopyLinkToClipboard)
            }
            MenuItem {
                text: qsTr("Copy")
                iconName: "copy"
                shortcutText: "Ctrl+C"
                startsGroup: true
                enabled: pageMenu.hasSelection
                onTriggered: view.triggerWebAction(WebEngineView.Copy)
            }
            MenuItem {
                text: qsTr("Paste")
                shortcutText: "Ctrl+V"
                enabled: pageMenu.isEditable
                onTriggered: view.triggerWebAction(WebEngineView.Paste)
            }
        }
    }
}
