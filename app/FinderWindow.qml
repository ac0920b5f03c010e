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
    // As much as is written before the user has said where to.
    readonly property int mostUnplaced: 256 * 1024 * 1024
    property int visibilityBefore: Window.Windowed

    // The number under which `download` is being saved.
    function savingOf(download: WebEngineDownloadRequest): var {
        return Object.keys(savings).find(key => savings[key].id === download.id);
    }
    function keep(download: WebEngineDownloadRequest, saving: int): void {
        savings[saving] = download;
        download.downloadDirectory = browserCacheFolder + "/unfinished";
        download.downloadFileName = saving + ".part";
        download.accept();
        download.receivedBytesChanged.connect(() => {
            if (download.receivedBytes > mostUnplaced && !download.isPaused && !finder.hasPlace(saving))
                download.pause();
        });
    }
    function rememberFrame(): void {
        if (visibility === Window.Windowed)
            controller.frame = Qt.rect(x, y, width, height);
    }

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
    Component.onCompleted: moved.isArmed = true

    // Not while it is still being moved.
    Timer {
        id: moved

        property bool isArmed: false

        interval: 500
        onTriggered: if (isArmed) window.rememberFrame()
    }

    Connections {
        target: window.controller

        function onHiding() {
            if (view.isPageFullScreen) {
                view.page.leaveFullScreen();
                window.visibility = window.visibilityBefore;
            }
        }
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
                // The engine goes on by itself with one that broke off. It asks again then, and would
                // crash if it were asked for the view.
                const known = window.savingOf(download);
                if (known !== undefined) {
                    window.keep(download, known);
                    return;
                }
                const view = download.view as EngineView;
                if (window.finder.takesDownload(view?.page ?? null, download.url, download.mimeType)) {
                    download.cancel();
                    return;
                }
                // The engine gives up on one that waits for the user, so it is moved afterwards.
                // Nobody is there to be asked.
                if (!window.controller.isShown) {
                    download.cancel();
                    return;
                }
                const saving = window.finder.beginSaving(download.downloadFileName);
                if (!window.finder.isSaving(saving)) {
                    download.cancel();
                    return;
                }
                window.keep(download, saving);
            }
            onDownloadFinished: download => {
                // Those that were refused end too.
                const saving = window.savingOf(download);
                if (saving === undefined)
                    return;
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
        function onPlaceChosen(saving: int) {
            if (window.savings[saving]?.isPaused)
                window.savings[saving].resume();
        }
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
                isWindowShown: window.controller.isShown
            }
        }
        onIsPageFullScreenChanged: {
            // A page must not bring back what the user has closed.
            if (!window.controller.isShown)
                return;
            if (isPageFullScreen) {
                window.visibilityBefore = window.visibility;
                window.showFullScreen();
            } else {
                window.visibility = window.visibilityBefore;
            }
        }
    }

    Binding {
        target: window.controller
        property: "hasSheet"
        value: window.controller.isShown && window.panels.isOpen
    }
    Binding {
        target: window.finder
        property: "isShown"
        value: window.controller.isShown
    }
    Binding {
        target: window.finder
        property: "isPanelOpen"
        value: window.panels.isOpen
    }
    FilePanelHost {
        panels: window.panels
        isInFront: window.controller.isShown
    }
}
