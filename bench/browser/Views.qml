import QtQuick
import QtWebEngine
import Lumaro.Platform.WebEngine

// The same engine twice: as the stream finder uses it, and bare.
Item {
    id: root

    required property list<string> handlers
    readonly property EngineWebView page: own.page
    // What the views' pages say of themselves.
    readonly property string ownTitle: own.title
    readonly property string bareTitle: bare.title

    function show(isOwn: bool, address: url): void {
        own.visible = isOwn;
        bare.visible = !isOwn;
        (isOwn ? own : bare).url = address;
    }

    EngineProfile {
        id: engineProfile

        profile: WebEngineProfile { offTheRecord: true; httpCacheType: WebEngineProfile.NoCache }
    }
    EngineView {
        id: own

        anchors.fill: parent
        engineProfile: engineProfile
        messageHandlers: root.handlers
    }
    WebEngineView {
        id: bare

        anchors.fill: parent
        profile: WebEngineProfile { offTheRecord: true; httpCacheType: WebEngineProfile.NoCache }
    }
}
