import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

Item {
    readonly property EnginePlayerPage page: view.page

    PlayerPageView {
        id: view

        anchors.fill: parent
        profile: WebEngineProfile { offTheRecord: true }
    }
}
