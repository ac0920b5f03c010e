import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

// Shows the pages of a web view of the models, `page`: tells it what happens, and does what it asks
// for. What a page may not decide by itself, the surroundings do:
//   messageHandlers            what the models' scripts may post to
//   permissionRequested(...)   answer with answerPermission()
//   certificateRefused(...)    the server is not who it claims to be; nothing was loaded
//   dialogRequested(request)   the page wants to tell or ask the user something, and waits
//   loginRequested(request)    the server wants a name and a password, and waits
//   uploadRequested(request)   the page wants files of the user's
//   crashed()                  the page's process is gone; reload() makes another
//   menuRequested(request)     the page's context menu
WebEngineView {
    id: root

    required property EngineProfile engineProfile
    property alias messageHandlers: bridge.messageHandlers
    readonly property EngineWebView page: bridge
    signal permissionRequested(url origin, int feature)
    signal certificateRefused(url address, string reason)
    signal dialogRequested(JavaScriptDialogRequest request)
    signal loginRequested(AuthenticationDialogRequest request)
    signal uploadRequested(FileDialogRequest request)
    signal crashed()
    signal menuRequested(ContextMenuRequest request)

    function answerPermission(origin: url, feature: int, allowed: bool): void {
        grantFeaturePermission(origin, feature, allowed);
    }
    function tellHistory(): void {
        bridge.canGoBack = canGoBack;
        bridge.canGoForward = canGoForward;
    }
    function insertScript(source: string, world: int): void {
        const script = WebEngine.script();
        script.sourceCode = source;
        script.injectionPoint = WebEngineScript.DocumentCreation;
        script.worldId = world;
        script.runsOnSubFrames = true;
        userScripts.insert(script);
    }
    function insertScripts(): void {
        userScripts.clear();
        insertScript(bridge.isolatedScript, WebEngineScript.ApplicationWorld);
        for (const source of bridge.scripts)
            insertScript(source, WebEngineScript.MainWorld);
    }

    profile: engineProfile.profile
    settings {
        playbackRequiresUserGesture: false
        fullScreenSupportEnabled: true
        screenCaptureEnabled: false
        localContentCanAccessFileUrls: false
        localContentCanAccessRemoteUrls: false
        pdfViewerEnabled: false
    }

    Component.onCompleted: insertScripts()
    onUrlChanged: {
        bridge.url = url;
        tellHistory();
    }
    onTitleChanged: bridge.title = title
    // What the engine announces of its history comes before the history has changed.
    onLoadingChanged: info => {
        bridge.url = url;
        tellHistory();
        bridge.tellLoading(info);
    }
    // It stands at nothing until the first bytes of the answer come.
    onLoadProgressChanged: if (loadProgress > 0) bridge.tellAnswer()
    onCanGoBackChanged: tellHistory()
    onCanGoForwardChanged: tellHistory()
    onJavaScriptConsoleMessage: (level, message) => bridge.readConsole(message)
    onNavigationRequested: request => bridge.decideNavigation(request)
    onNewWindowRequested: request => bridge.decideNewWindow(request)
    onFeaturePermissionRequested: (origin, feature) => root.permissionRequested(origin, feature)
    onCertificateError: error => {
        error.rejectCertificate();
        root.certificateRefused(error.url, error.description);
    }
    onRenderProcessTerminated: root.crashed()
    onContextMenuRequested: request => {
        request.accepted = true;
        root.menuRequested(request);
    }
    // Whoever asks is the user's own proxy, whose password is among the settings.
    onAuthenticationDialogRequested: request => {
        request.accepted = true;
        bridge.tellAnswer();
        if (request.type === AuthenticationDialogRequest.AuthenticationTypeProxy)
            request.dialogReject();
        else
            root.loginRequested(request);
    }
    onJavaScriptDialogRequested: request => {
        request.accepted = true;
        root.dialogRequested(request);
    }
    onFileDialogRequested: request => {
        request.accepted = true;
        root.uploadRequested(request);
    }
    onColorDialogRequested: request => {
        request.accepted = true;
        request.dialogReject();
    }
    onRegisterProtocolHandlerRequested: request => request.reject()

    EngineWebView {
        id: bridge

        profile: root.engineProfile
        onScriptsChanged: root.insertScripts()
        onLoadRequested: address => root.url = address
        onStopRequested: root.stop()
        onBackRequested: root.goBack()
        onForwardRequested: root.goForward()
        onReloadRequested: root.reload()
        onEvaluationRequested: script => root.runJavaScript(script)
        onPauseRequested: script => root.runJavaScript(script, WebEngineScript.ApplicationWorld, () => {})
    }
}
