import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

Item {
    id: root

    required property list<string> handlers
    readonly property EngineWebView page: view.page

    EngineProfile {
        id: engineProfile

        profile: WebEngineProfile { offTheRecord: true }
    }
    EngineView {
        id: view

        anchors.fill: parent
        engineProfile: engineProfile
        messageHandlers: root.handlers
    }
}
