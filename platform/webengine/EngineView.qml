import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

// Shows a web view of the models: tells it what happens, and does what it asks for.
WebEngineView {
    id: root

    required property EngineWebView webView

    function tellHistory(): void {
        webView.canGoBack = canGoBack;
        webView.canGoForward = canGoForward;
    }
    function insertScripts(): void {
        userScripts.clear();
        for (const source of webView.scripts) {
            const script = WebEngine.script();
            script.sourceCode = source;
            script.injectionPoint = WebEngineScript.DocumentCreation;
            script.worldId = WebEngineScript.MainWorld;
            script.runsOnSubFrames = true;
            userScripts.insert(script);
        }
    }

    Component.onCompleted: insertScripts()
    onUrlChanged: {
        webView.url = url;
        tellHistory();
    }
    // What the engine announces of its history comes before the history has changed.
    onLoadingChanged: tellHistory()
    onCanGoBackChanged: tellHistory()
    onCanGoForwardChanged: tellHistory()
    onJavaScriptConsoleMessage: (level, message) => webView.readConsole(message)

    Connections {
        target: root.webView

        function onScriptsChanged() { root.insertScripts(); }
        function onLoadRequested(url: url) { root.url = url; }
        function onStopRequested() { root.stop(); }
        function onBackRequested() { root.goBack(); }
        function onForwardRequested() { root.goForward(); }
        function onReloadRequested() { root.reload(); }
        function onEvaluationRequested(script: string) { root.runJavaScript(script); }
    }
}
