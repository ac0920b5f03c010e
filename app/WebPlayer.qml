import QtQuick
import Lumaro.App
import Lumaro.Platform.WebEngine

// The players of the video sites, each with a page that comes and goes with what it shows.
Item {
    id: root

    required property WebPlayers webPlayers
    required property MainWindowModel shell
    required property string folder
    required property string cacheFolder

    PlayerProfile {
        id: sharedProfile

        folder: root.folder
        cacheFolder: root.cacheFolder
    }

    Loader {
        anchors.fill: parent
        active: root.webPlayers.youTube.wantsPage
        sourceComponent: SitePlayer {
            player: root.webPlayers.youTube
            profile: sharedProfile
            shell: root.shell
        }
    }
    Loader {
        anchors.fill: parent
        active: root.webPlayers.okVideo.wantsPage
        sourceComponent: SitePlayer {
            player: root.webPlayers.okVideo
            profile: sharedProfile
            shell: root.shell
        }
    }
}
