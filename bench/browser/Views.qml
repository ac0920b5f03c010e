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
    signal titleChanged()

    // Whichever is given an address is shown and goes there.
    property url ownAddress
    property url bareAddress

    onOwnTitleChanged: titleChanged()
    onBareTitleChanged: titleChanged()
    onOwnAddressChanged: {
        bare.visible = false;
        own.visible = true;
        own.url = ownAddress;
    }
    onBareAddressChanged: {
        own.visible = false;
        bare.visible = true;
        bare.url = bareAddress;
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
