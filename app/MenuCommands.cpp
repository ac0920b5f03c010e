#include "app/MenuCommands.h"

#include "app/DownloadsModel.h"
#include "app/MainWindowModel.h"
#include "app/RecentMenu.h"
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
    if (!isEnabled())
        return;
    m_description.action();
    // An item toggles itself when it is clicked, also the choice that was made before.
    if (isCheckable())
        Q_EMIT isCheckedChanged();
}

void MenuCommand::setChoices(std::vector<std::unique_ptr<MenuCommand>> choices)
{
    const QList<MenuCommand *> before = std::exchange(m_choices, {});
    for (auto &choice : choices) {
        choice->setParent(this);
        m_choices.append(choice.release());
    }
    Q_EMIT choicesChanged();
    for (MenuCommand *const choice : before)
        choice->deleteLater();
}

MenuCommands::MenuCommands(PlayerModel &player, MainWindowModel &window, DownloadsModel &downloads,
                           RecentItems &recent, QObject *parent)
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
        makeRecentMenu(recent, this),
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
        make({.title = [&player] { return player.isPlaying() ? tr("Pause") : tr("Play"); },
              .action = [&player] { player.togglePlayback(); },
              .monitoredKeys = QStringLiteral("Space")});
    connect(&player, &PlayerModel::isPlayingChanged, playPause, &MenuCommand::titleChanged);
    m_playback = {playPause,
                  make({.title = always(tr("Stop")),
                        .action = [&player] { player.stop(); },
                        .monitoredKeys = QStringLiteral("Ctrl+K")})};
    for (const auto &[seconds, modifier] :
         {std::pair(5, ""), std::pair(20, "Alt+"), std::pair(60, "Ctrl+")}) {
        const QString keys = QString::fromLatin1(modifier);
        m_playback << make({.title = always(tr("Back %n Seconds", nullptr, seconds)),
                            .action = [&player, seconds] { player.skip(-seconds); },
                            .startsGroup = seconds == 5,
                            .monitoredKeys = keys + u"Left"})
                   << make({.title = always(tr("Forward %n Seconds", nullptr, seconds)),
                            .action = [&player, seconds] { player.skip(seconds); },
                            .monitoredKeys = keys + u"Right"});
    }
    m_playback << make({always(tr("Play from the Beginning")), QStringLiteral("Home"),
                        [&player] { player.seek(0); }});
    MenuCommand *mute =
        make({.title = [&player] { return player.isMuted() ? tr("Unmute") : tr("Mute"); },
              .shortcut = QStringLiteral("Ctrl+M"),
              .action = [&player] { player.toggleMute(); },
              .startsGroup = true});
    connect(&player, &PlayerModel::isMutedChanged, mute, &MenuCommand::titleChanged);
    m_playback << mute;

    MenuCommand *sidebar =
        make({[&window] { return window.sidebarShown() ? tr("Hide Sidebar") : tr("Show Sidebar"); },
              QStringLiteral("Ctrl+B"), [&window] { window.toggleSidebar(); }});
    connect(&window, &MainWindowModel::sidebarShownChanged, sidebar, &MenuCommand::titleChanged);
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
                  // A site's own player shows its picture itself.
                  .isEnabled = [&player] { return !player.showsWebContent(); },
                  .isChecked = [&window, mode] { return window.displayMode() == mode; }});
        connect(&window, &MainWindowModel::displayModeChanged, choice,
                &MenuCommand::isCheckedChanged);
        connect(&player, &PlayerModel::showsWebContentChanged, choice,
                &MenuCommand::isEnabledChanged);
        m_displayModes.append(choice);
    }
    m_view = QList{sidebar, fullScreen} + m_displayModes;
    for (const int direction : {-1, 1}) {
        MenuCommand *pan = make(
            {.title = always(direction < 0 ? tr("Move Picture Left") : tr("Move Picture Right")),
             .shortcut =
                 direction < 0 ? QStringLiteral("Shift+Left") : QStringLiteral("Shift+Right"),
             .action = [&window, direction] { Q_EMIT window.panRequested(direction * 0.1); },
             .startsGroup = direction < 0,
             .isEnabled =
                 [&window] { return window.displayMode() == PortraitDisplayMode::manual; }});
        connect(&window, &MainWindowModel::displayModeChanged, pan, &MenuCommand::isEnabledChanged);
        m_view << pan;
    }

    m_help = {make({always(tr("Keyboard Shortcuts")), QStringLiteral("F1"),
                    [this] { Q_EMIT shortcutsRequested(); }}),
              make({always(tr("About Lumaro")), {}, [this] { Q_EMIT aboutRequested(); }})};
}

MenuCommand *MenuCommands::make(MenuCommand::Description description)
{
    return new MenuCommand(std::move(description), this);
}

} // namespace lumaro
