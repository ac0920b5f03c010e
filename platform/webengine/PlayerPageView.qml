import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

// Shows the page of a site's own player, `page`, which may play, fill the screen, and little else.
//   pageFullScreenRequested(on)   the page wants to fill the screen, or not any more
WebEngineView {
    id: root

    objectName: "playerPageView"
    readonly property EnginePlayerPage page: bridge
    signal pageFullScreenRequested(bool on)

    backgroundColor: "black"
    settings {
        playbackRequiresUserGesture: false
        fullScreenSupportEnabled: true
        screenCaptureEnabled: false
        localContentCanAccessFileUrls: false
        localContentCanAccessRemoteUrls: false
        navigateOnDropEnabled: false
        pdfViewerEnabled: false
        pluginsEnabled: false
        errorPageEnabled: false
        webRTCPublicInterfacesOnly: true
        unknownUrlSchemePolicy: WebEngineSettings.DisallowUnknownUrlSchemes
    }

    onLoadingChanged: info => bridge.tellLoading(info)
    onNavigationRequested: request => bridge.decideNavigation(request)
    onNewWindowRequested: request => bridge.decideNewWindow(request)
    onRenderProcessTerminated: bridge.crashed()
    onFullScreenRequested: request => {
        root.pageFullScreenRequested(request.toggleOn);
        request.accept();
    }
    // Of the page itself, the engine then tells that it failed.
    onCertificateError: error => error.rejectCertificate()
    onFeaturePermissionRequested: (origin, feature) => grantFeaturePermission(origin, feature, false)
    onContextMenuRequested: request => request.accepted = true
    onJavaScriptDialogRequested: request => {
        request.accepted = true;
        // To reject that one would keep the page.
        if (request.type === JavaScriptDialogRequest.DialogTypeBeforeUnload)
            request.dialogAccept();
        else
            request.dialogReject();
    }
    onFileDialogRequested: request => {
        request.accepted = true;
        request.dialogReject();
    }
    onColorDialogRequested: request => {
        request.accepted = true;
        request.dialogReject();
    }
    onAuthenticationDialogRequested: request => {
        request.accepted = true;
        request.dialogReject();
    }
    onSelectClientCertificate: selection => selection.selectNone()
    onRegisterProtocolHandlerRequested: request => request.reject()
    onFileSystemAccessRequested: request => request.reject()
    onQuotaRequested: request => request.reject()

    EnginePlayerPage {
        id: bridge

        onLoadRequested: address => root.url = address
        onHtmlRequested: (html, base) => root.loadHtml(html, base)
        onEvaluationRequested: script => root.runJavaScript(script)
        onAsked: (question, script, isolated) => root.runJavaScript(
            script, isolated ? WebEngineScript.ApplicationWorld : WebEngineScript.MainWorld,
            value => bridge.answer(question, value))
    }
}
