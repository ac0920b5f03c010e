import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

Item {
    id: root

    required property EngineProfile engineProfile
    required property EngineWebView engineWebView

    Binding {
        target: root.engineProfile
        property: "profile"
        value: WebEngineProfile { id: engineOwnProfile; offTheRecord: true }
    }
    EngineView {
        anchors.fill: parent
        profile: engineOwnProfile
        webView: root.engineWebView
    }
}
