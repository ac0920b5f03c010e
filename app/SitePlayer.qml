import QtQuick
import QtWebEngine
import Lumaro.App
import Lumaro.Platform.WebEngine
import Lumaro.Player

// One site's player. When its page fills the screen, the window does.
YouTubeHostingView {
    id: root

    required property MainWindowModel shell
    property alias profile: view.profile
    // The window fills the screen because the page asked for it.
    property bool madeFullScreen: false

    page: view.page
    Component.onDestruction: if (madeFullScreen) shell.isFullScreen = false

    PlayerPageView {
        id: view

        anchors.fill: parent
        onPageFullScreenRequested: on => {
            if (on) {
                root.madeFullScreen = root.madeFullScreen || !root.shell.isFullScreen;
                root.shell.isFullScreen = true;
            } else if (root.madeFullScreen) {
                root.madeFullScreen = false;
                root.shell.isFullScreen = false;
            }
        }
    }

    Connections {
        target: root.shell

        function onIsFullScreenChanged() {
            if (root.shell.isFullScreen)
                return;
            root.madeFullScreen = false;
            if (view.isFullScreen)
                view.fullScreenCancelled();
        }
    }
}
