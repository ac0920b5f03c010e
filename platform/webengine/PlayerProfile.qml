import QtWebEngine

// Keeps what the sites of embedded players leave behind, in a folder of its own. Nothing is
// downloaded.
WebEngineProfile {
    required property string folder
    required property string cacheFolder

    storageName: "player"
    offTheRecord: false
    persistentStoragePath: folder
    cachePath: cacheFolder
    persistentCookiesPolicy: WebEngineProfile.AllowPersistentCookies
    spellCheckEnabled: false
    onDownloadRequested: download => download.cancel()
}
