import QtQuick
import QtWebEngine
import Lumaro.App
import Lumaro.Finder
import Lumaro.Platform.WebEngine
import Lumaro.Ui

// The stream finder's window. It stays above the main window, goes with it, and is only hidden when
// the user closes it.
Window {
    id: window

    required property SnifferViewModel finder
    required property SnifferWindowController controller
    required property QuickFilePanels panels
    required property string browserFolder
    required property string browserCacheFolder

    // What pages save that is no stream, by its number.
    property var savings: ({})

    function rememberFrame(): void {
        if (visibility === Window.Windowed)
            controller.frame = Qt.rect(x, y, width, height);
    }

    width: 1100
    height: 800
    minimumWidth: 820
    minimumHeight: 640
    title: controller.title
    color: Theme.background
    flags: Qt.Window
    visible: controller.isShown

    // For what Qt draws itself: the file panels of a desktop that has none.
    palette {
        window: Theme.surface
        windowText: Theme.text
        base: Theme.background
        text: Theme.text
        placeholderText: Theme.textSecondary
        button: Theme.surfaceRaised
        buttonText: Theme.text
        light: Theme.surface
        midlight: Theme.fillPressed
        mid: Theme.stroke
        dark: Theme.textSecondary
        shadow: "black"
        highlight: Theme.accent
        highlightedText: Theme.onAccent
        brightText: Theme.text
    }

    onClosing: close => close.accepted = controller.windowShouldClose()
    onXChanged: moved.restart()
    onYChanged: moved.restart()
    onWidthChanged: moved.restart()
    onHeightChanged: moved.restart()
    Component.onCompleted: {
        // The title bar wants a place too.
        const bar = 36;
        const area = Qt.rect(Screen.virtualX, Screen.virtualY + bar, Screen.desktopAvailableWidth, Screen.desktopAvailableHeight - bar);
        const frame = controller.placedFrame(area, Qt.size(width, height));
        x = frame.x;
        y = frame.y;
        width = frame.width;
        height = frame.height;
        moved.isArmed = true;
    }

    // Not while it is still being moved.
    Timer {
        id: moved

        property bool isArmed: false

        interval: 500
        onTriggered: if (isArmed) window.rememberFrame()
    }

    Connections {
        target: window.controller

        function onFrontRequested() {
            window.raise();
            window.requestActivate();
        }
    }

    EngineProfile {
        id: sharedProfile

        profile: BrowserProfile {
            applicationName: "VarnM3U8Sniffer/1.0"
            folder: window.browserFolder
            cacheFolder: window.browserCacheFolder
            onDownloadRequested: download => {
                const view = download.view as EngineView;
                if (window.finder.takesDownload(view?.page ?? null, download.url, download.mimeType)) {
                    download.cancel();
                    return;
                }
                // The engine gives up on one that waits for the user, so it is moved afterwards.
                const saving = window.finder.beginSaving(download.downloadFileName);
                window.savings[saving] = download;
                download.downloadDirectory = window.browserCacheFolder + "/unfinished";
                download.downloadFileName = saving + ".part";
                download.accept();
            }
            onDownloadFinished: download => {
                const saving = parseInt(download.downloadFileName);
                delete window.savings[saving];
                if (download.state === WebEngineDownloadRequest.DownloadCompleted)
                    window.finder.finishSaving(saving, download.downloadDirectory + "/" + download.downloadFileName);
                else
                    window.finder.abandonSaving(saving, download.state === WebEngineDownloadRequest.DownloadInterrupted
                        ? download.interruptReasonString : "");
            }
        }
    }

    Connections {
        target: window.finder

        function onSavingCancelled(saving: int) { window.savings[saving]?.cancel(); }
    }

    SnifferView {
        id: view

        anchors.fill: parent
        focus: true
        finder: window.finder
        webPage: Component {
            FinderPage {
                finder: window.finder
                engineProfile: sharedProfile
            }
        }
        onIsPageFullScreenChanged: {
            if (isPageFullScreen)
                window.showFullScreen();
            else
                window.showNormal();
        }
    }

    FilePanelHost {
        panels: window.panels
        isInFront: window.controller.isShown
    }
}
