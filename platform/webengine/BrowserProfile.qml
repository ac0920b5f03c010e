import QtQuick
import QtWebEngine

// Keeps what web sites leave behind in a folder of its own.
WebEngineProfile {
    // What the browser calls itself besides the engine's own name.
    property string applicationName
    required property string folder
    required property string cacheFolder

    storageName: "browser"
    offTheRecord: false
    persistentStoragePath: folder
    cachePath: cacheFolder
    persistentCookiesPolicy: WebEngineProfile.AllowPersistentCookies
    spellCheckEnabled: false
    Component.onCompleted: httpUserAgent = httpUserAgent + " " + applicationName
}
