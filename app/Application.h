#pragma once

#include "app/DownloadsModel.h"
#include "app/Folders.h"
#include "app/HelpModel.h"
#include "app/LocalM3UCommands.h"
#include "app/LocalM3UModel.h"
#include "app/MainWindowModel.h"
#include "app/MenuCommands.h"
#include "app/ProxyRoute.h"
#include "app/RecentItems.h"
#include "app/RecordingModel.h"
#include "app/RemoteControl.h"
#include "app/ResumingPlayback.h"
#include "app/TransportModel.h"
#include "app/WindowPlacement.h"
#include "display/PlayerHostingView.h"
#include "finder/SnifferSavedWebsiteStore.h"
#include "finder/SnifferViewModel.h"
#include "finder/SnifferWindowController.h"
#include "platform/DelayedTask.h"
#include "platform/NotificationCenter.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/dbus/BusKeepAwake.h"
#include "platform/dbus/MprisControls.h"
#include "platform/dbus/PortalAppearance.h"
#include "platform/mpv/MpvMediaPlayer.h"
#include "platform/qt/BoundedNetworkAccess.h"
#include "platform/qt/FileUserDefaults.h"
#include "platform/qt/QtInputMonitor.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/QtWorkspace.h"
#include "platform/qt/QuickFilePanels.h"
#include "platform/qt/WindowCapture.h"
#include "player/PlayerModel.h"
#include "player/VolumeMemory.h"
#include "player/WakefulPlayback.h"
#include "player/WebPlayers.h"
#include "playlist/ChannelListModel.h"

#include <QLibrary>
#include <QPointer>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

namespace lumaro {

/// The composition root: makes the platform's adapters and the models, and shows the one main
/// window. Lives from after the application object until the event loop ends.
class Application
{
public:
    /// To be called before the application object is made.
    static void prepare();

    explicit Application(const Folders &folders, const WebServices &services = {});
    ~Application();
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;

    /// Shows the main window; false when its views cannot be loaded.
    bool show();
    /// Brings the main window forward; the desktop may want to see a token of whoever asked for it.
    void bringToFront(const QByteArray &activationToken);
    /// Shows the stream finder's window, and tells the user when that fails.
    void showFinder();
    /// Opens files or an address, told relative to `workingFolder`.
    void open(const QStringList &filesAndAddresses, const QString &workingFolder);

    PlayerModel &player() { return m_player; }
    MainWindowModel &window() { return m_window; }
    DownloadsModel &downloads() { return m_downloads; }
    ChannelListModel &channels() { return m_channels; }
    LocalM3UStore &library() { return m_library; }
    SnifferProxyManager &proxy() { return m_proxy; }
    SnifferViewModel &finder() { return m_finder; }
    SnifferWindowController &finderWindow() { return m_finderController; }
    LocalM3UModel &librarySection() { return m_librarySection; }
    WebPlayers &webPlayers() { return m_webPlayers; }
    PlayerSurfaceRegistry &surfaces() { return m_surfaces; }
    RecordingModel &recording() { return m_recording; }
    RecentItems &recent() { return m_recent; }
    QuickFilePanels &panels() { return m_panels; }
    QQmlApplicationEngine &engine() { return m_engine; }

private:
    QQuickWindow *mainWindow() const;
    /// What QML shows web pages with, from its own module.
    bool loadBrowser();
    bool loadFinder();
    SnifferWindowController::KeyWindow classified(const QWindow *window) const;
    void playFound(const QUrl &url, const QString &name);
    QVariantMap windowProperties() const;
    void followWindow(QQuickWindow &window);
    void followAppearance();

    const Folders m_folders;
    // In the order of who needs whom; the engine goes first at the end, and with it every view.
    QtScheduler m_scheduler;
    /// For those whose work waits for file systems, some of which never answer.
    QtScheduler m_files{{.count = 16}};
    QtScheduler m_idle{{.priority = QThread::IdlePriority}};
    NotificationCenter m_notifications;
    CurlHttpClient m_http;
    FileUserDefaults m_defaults;
    QuickFilePanels m_panels;
    QtWorkspace m_workspace;
    QtInputMonitor m_input;
    MpvMediaPlayer m_mediaPlayer;
    ProxyRoute m_proxyRoute;
    SnifferProxyManager m_proxy;
    YouTubePlayerRegistry m_youTube;
    OKVideoPlayerRegistry m_okVideo;
    PlayerSurfaceRegistry m_surfaces;
    PlayerViewServices m_viewServices;
    PlayerModel m_player;
    VolumeMemory m_volumeMemory;
    BusKeepAwake m_keepAwake;
    WakefulPlayback m_wakefulPlayback;
    ResumePositions m_resumePositions;
    ResumingPlayback m_resumingPlayback;
    WebPlayers m_webPlayers;
    MainWindowModel m_window;
    WindowPlacement m_placement;
    RecentItems m_recent;
    MprisControls m_mediaControls;
    RemoteControl m_remote;
    TransportModel m_transport;
    M3U8DownloadManager m_downloadManager;
    DownloadsModel m_downloads;
    WindowCapture m_capture;
    PlayerRecordingController m_recordingController;
    RecordingModel m_recording;
    MenuCommands m_commands;
    ChannelListModel m_channels;
    LocalM3UStore m_library;
    LocalM3UModel m_librarySection;
    LocalM3UCommands m_libraryCommands;
    HelpModel m_help;
    CompilingRuleListStore m_ruleLists;
    SnifferAdBlocker m_adBlocker;
    SnifferSavedWebsiteStore m_websites;
    SnifferViewModel m_finder;
    SnifferWindowController m_finderController;
    PortalAppearance m_appearance;
    BoundedNetworkAccess m_pictureAccess;
    DelayedTask m_garbage{m_scheduler};
    QQmlApplicationEngine m_engine;
    QLibrary m_browser;
    /// Made when it is first shown, and deleted before the engine.
    QPointer<QQuickWindow> m_finderWindow;
};

/// The delegate of the application object's own events: the application quits when its last
/// window closes, and when it is told to. Windows hear of it but cannot refuse, for the stream
/// finder's never closes.
class VarnApplicationDelegate : public QObject
{
public:
    /// The application object owns it.
    static void install();

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace lumaro
