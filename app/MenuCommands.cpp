#include "app/MenuCommands.h"

#include "app/DownloadsModel.h"
#include "app/MainWindowModel.h"
#include "player/PlayerModel.h"

namespace lumaro {

namespace {

std::function<QString()> always(const QString &text)
{
    return [text] { return text; };
}

} // namespace

MenuCommand::MenuCommand(Description description, QObject *parent)
    : QObject(parent)
    , m_description(std::move(description))
{
}

void MenuCommand::trigger()
{
    if (isEnabled())
        m_description.action();
}

MenuCommands::MenuCommands(PlayerModel &player, MainWindowModel &window, DownloadsModel &downloads,
                           QObject *parent)
    : QObject(parent)
{
    m_file = {
        make({always(tr("Open Media…")), QStringLiteral("Ctrl+O"),
              [&window] { window.openFile(); }}),
        make({always(tr("Open Address…")), QStringLiteral("Ctrl+L"),
              [&window] {
                  window.revealSidebar(MainWindowModel::PlayerSidebarSection::network);
                  Q_EMIT window.addressFieldRequested();
              }}),
        make({always(tr("Import M3U Playlist…")), QStringLiteral("Ctrl+I"),
              [&window] { window.importPlaylist(); }}),
        make({.title = always(QStringLiteral("M3U8 Stream Finder")),
              .shortcut = QStringLiteral("Ctrl+Shift+F"),
              .action = [this] { Q_EMIT finderRequested(); },
              .startsGroup = true}),
        make({.title = always(tr("Download This Stream")),
              .shortcut = QStringLiteral("Ctrl+Shift+D"),
              .action = [&downloads] { downloads.downloadStream(); },
              .startsGroup = true}),
        make({always(tr("Downloads")), QStringLiteral("Ctrl+J"),
              [&downloads] { downloads.setPanelShown(!downloads.panelShown()); }}),
        make({.title = always(tr("Quit")),
              .shortcut = QStringLiteral("Ctrl+Q"),
              .action = [this] { Q_EMIT quitRequested(); },
              .startsGroup = true}),
    };

    MenuCommand *playPause =
        make({[&player] { return player.isPlaying() ? tr("Pause") : tr("Play"); },
              {},
              [&player] { player.togglePlayback(); }});
    connect(&player, &PlayerModel::isPlayingChanged, playPause, &MenuCommand::titleChanged);
    m_playback = {playPause, make({always(tr("Stop")), {}, [&player] { player.stop(); }})};
    for (const int seconds : {5, 20, 60}) {
        m_playback << make({.title = always(tr("Back %n Seconds", nullptr, seconds)),
                            .shortcut = {},
                            .action = [&player, seconds] { player.skip(-seconds); },
                            .startsGroup = seconds == 5})
                   << make({always(tr("Forward %n Seconds", nullptr, seconds)),
                            {},
                            [&player, seconds] { player.skip(seconds); }});
    }
    MenuCommand *mute =
        make({.title = [&player] { return player.isMuted() ? tr("Unmute") : tr("Mute"); },
              .shortcut = QStringLiteral("Ctrl+M"),
              .action = [&player] { player.toggleMute(); },
              .startsGroup = true});
    connect(&player, &PlayerModel::isMutedChanged, mute, &MenuCommand::titleChanged);
    m_playback << mute;

    MenuCommand *sidebar = make(
        {[&window] { return window.sidebarVisible() ? tr("Hide Sidebar") : tr("Show Sidebar"); },
         QStringLiteral("Ctrl+B"),
         [&window] { window.setSidebarVisible(!window.sidebarVisible()); }});
    connect(&window, &MainWindowModel::sidebarVisibleChanged, sidebar, &MenuCommand::titleChanged);
    MenuCommand *fullScreen = make(
        {[&window] {
             return window.isFullScreen() ? tr("Exit Full Screen") : tr("Enter Full Screen");
         },
         QStringLiteral("F11"), [&window] { window.setIsFullScreen(!window.isFullScreen()); }});
    connect(&window, &MainWindowModel::isFullScreenChanged, fullScreen, &MenuCommand::titleChanged);
    for (const PortraitDisplayMode mode : allPortraitDisplayModes) {
        MenuCommand *choice =
            make({.title = always(displayTitle(mode)),
                  .shortcut = QStringLiteral("Ctrl+%1").arg(int(mode) + 1),
                  .action = [&window, mode] { window.setDisplayMode(mode); },
                  .startsGroup = mode == PortraitDisplayMode::normal,
                  .isChecked = [&window, mode] { return window.displayMode() == mode; }});
        connect(&window, &MainWindowModel::displayModeChanged, choice,
                &MenuCommand::isCheckedChanged);
        m_displayModes.append(choice);
    }
    m_view = QList{sidebar, fullScreen} + m_displayModes;
}

MenuCommand *MenuCommands::make(MenuCommand::Description description)
{
    return new MenuCommand(std::move(description), this);
}

} // namespace lumaro
