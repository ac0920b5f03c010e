#pragma once

#include "display/PortraitDisplayMode.h"
#include "platform/DefaultsWriter.h"
#include "platform/DelayedTask.h"
#include "player/PlayerModel.h"

#include <QObject>
#include <QPointer>

namespace lumaro {

class NotificationCenter;

/// What the main window decides beyond the player: what the sidebar shows, when a typed address
/// opens, when the controls and the pointer hide, what stands over the picture. Main thread.
class MainWindowModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool sidebarVisible READ sidebarVisible WRITE setSidebarVisible NOTIFY
                   sidebarVisibleChanged)
    /// The sidebar is wanted and there is a place for it, which full screen has not.
    Q_PROPERTY(bool sidebarShown READ sidebarShown NOTIFY sidebarShownChanged)
    Q_PROPERTY(PlayerSidebarSection sidebarSection READ sidebarSection WRITE setSidebarSection
                   NOTIFY sidebarSectionChanged)
    /// The same as a yes or no.
    Q_PROPERTY(bool showsLocalM3U READ showsLocalM3U NOTIFY sidebarSectionChanged)
    /// What stands in the address field; a change schedules its automatic opening.
    Q_PROPERTY(QString addressText READ addressText WRITE setAddressText NOTIFY addressTextChanged)
    /// The optional movie or playlist name, given to what the address field opens.
    Q_PROPERTY(QString displayName READ displayName WRITE setDisplayName NOTIFY displayNameChanged)
    Q_PROPERTY(bool displayNameShown READ displayNameShown WRITE setDisplayNameShown NOTIFY
                   displayNameShownChanged)
    /// There is something that clearNetwork() forgets or ends.
    Q_PROPERTY(bool canClearNetwork READ canClearNetwork NOTIFY canClearNetworkChanged)
    /// How the picture is shown; kept for the next start.
    Q_PROPERTY(lumaro::PortraitDisplayMode displayMode READ displayMode WRITE setDisplayMode NOTIFY
                   displayModeChanged)
    Q_PROPERTY(bool isFullScreen READ isFullScreen WRITE setIsFullScreen NOTIFY isFullScreenChanged)
    /// The window was maximised before it filled the screen.
    Q_PROPERTY(bool wasMaximized READ wasMaximized NOTIFY wasMaximizedChanged)
    /// The controls over the picture are wanted now.
    Q_PROPERTY(bool controlsVisible READ controlsVisible NOTIFY controlsVisibleChanged)
    /// The pointer or the keyboard is on the controls, so they must stay.
    Q_PROPERTY(
        bool controlsInUse READ controlsInUse WRITE setControlsInUse NOTIFY controlsInUseChanged)
    Q_PROPERTY(bool cursorHidden READ cursorHidden NOTIFY cursorHiddenChanged)
    /// The item takes its time to show anything.
    Q_PROPERTY(bool isOpening READ isOpening NOTIFY isOpeningChanged)
    /// The channel that plays, as an index into the player's playlist; -1 for none.
    Q_PROPERTY(int currentChannel READ currentChannel NOTIFY currentChannelChanged)
    /// One sentence in place of a picture that cannot be shown; empty for none.
    Q_PROPERTY(QString pictureNotice READ pictureNotice NOTIFY pictureNoticeChanged)
    /// The player's error, over the picture where the sidebar does not show it: for a while, then
    /// with the controls; empty for none.
    Q_PROPERTY(QString pictureError READ pictureError NOTIFY pictureErrorChanged)

public:
    enum class PlayerSidebarSection { network, localM3U };
    Q_ENUM(PlayerSidebarSection)

    static constexpr std::chrono::milliseconds automaticOpenDelay{450};
    static constexpr std::chrono::milliseconds openingDelay{450};
    static constexpr std::chrono::milliseconds controlsHideDelay{2500};
    static constexpr std::chrono::milliseconds cursorHideDelay{2000};
    /// How long an error stays without the controls.
    static constexpr std::chrono::milliseconds errorHideDelay{8000};
    /// How long the desktop may take to make the window fill the screen, or not any more.
    static constexpr std::chrono::milliseconds fullScreenPatience{1000};

    /// All arguments outlive the model.
    MainWindowModel(PlayerModel &player, MediaPlayer &mediaPlayer, Scheduler &scheduler,
                    NotificationCenter &notifications, UserDefaults &defaults,
                    QObject *parent = nullptr);

    bool sidebarVisible() const { return m_sidebarVisible; }
    void setSidebarVisible(bool visible);
    bool sidebarShown() const { return m_sidebarVisible && !m_isFullScreen; }
    /// Shows the sidebar, for which the window leaves full screen, or hides it.
    Q_INVOKABLE void toggleSidebar();
    PlayerSidebarSection sidebarSection() const { return m_sidebarSection; }
    void setSidebarSection(PlayerSidebarSection section);
    bool showsLocalM3U() const { return m_sidebarSection == PlayerSidebarSection::localM3U; }
    const QString &addressText() const { return m_addressText; }
    void setAddressText(const QString &text);
    const QString &displayName() const { return m_displayName; }
    void setDisplayName(const QString &name);
    bool displayNameShown() const { return m_displayNameShown; }
    void setDisplayNameShown(bool shown);
    bool canClearNetwork() const { return m_canClearNetwork; }
    PortraitDisplayMode displayMode() const { return m_displayMode; }
    void setDisplayMode(PortraitDisplayMode mode);
    bool isFullScreen() const { return m_isFullScreen; }
    void setIsFullScreen(bool fullScreen);
    bool wasMaximized() const { return m_wasMaximized; }
    bool controlsVisible() const;
    bool controlsInUse() const { return m_controlsInUse; }
    void setControlsInUse(bool inUse);
    bool cursorHidden() const { return m_cursorHidden; }
    bool isOpening() const { return m_isOpening; }
    int currentChannel() const { return m_currentChannel; }
    const QString &pictureNotice() const { return m_pictureNotice; }
    const QString &pictureError() const { return m_pictureError; }

    /// The playlist that is being loaded does not bring its section up when it arrives, and an
    /// error is told where it was asked for.
    void keepSectionWhileLoading() { m_keepsSection = m_player.isLoading(); }

    /// Shows the sidebar with `section`; out of full screen, where there is no place for it.
    void revealSidebar(PlayerSidebarSection section);

    /// Opens `text` after a pause, unless another call comes first or it is no complete address.
    void scheduleAutomaticOpen(const QString &text);
    /// Opens the address field's text at once, complete or not. False when it is no address.
    Q_INVOKABLE bool openTypedAddress();
    /// Forgets the typed address and everything that came from the network.
    Q_INVOKABLE void clearNetwork();

    /// The desktop tells whether the window fills the screen. What it tells of an older wish counts
    /// only if it does not come to the newest.
    void windowFillsScreen(bool fills);
    /// The desktop tells whether the window is maximised while it does not fill the screen.
    void windowIsMaximized(bool maximized);

    Q_INVOKABLE void showFullScreenControls();
    /// Hides the pointer after a pause in `window` if that is still the key window then.
    void scheduleCursorHideIfNeeded(QObject *window);

    /// Opens what was named on the command line: a file, an address, or several files, which become
    /// the playlist and are played one after another. Of other things the first is opened, and the
    /// user is told.
    void open(const QStringList &filesAndAddresses, const QString &workingFolder);
    /// The same for `urls`, or else `text`. False when there is nothing to open.
    Q_INVOKABLE bool openDropped(const QList<QUrl> &urls, const QString &text);
    /// What the user is told when not all of what was named or dropped could be opened.
    static QString openedOf(qsizetype opened, qsizetype all);
    Q_INVOKABLE void importPlaylist();
    Q_INVOKABLE void openFile();
    /// Plays the channel at `index` of the player's playlist.
    Q_INVOKABLE void playChannel(int index);
    /// The nearest channel after the one that plays, or before it if `step` is -1, that may be
    /// opened; -1 when there is none.
    int channelBeside(int step) const;
    /// The entry at `index` of the player's playlist, without a logo that the list must not show;
    /// empty where there is none. Where the list must not open it, the user is told.
    std::optional<PlaylistEntry> usableEntry(int index);
    /// What its list says of the channel that plays, also where the list is gone; empty for none.
    std::optional<PlaylistEntry> currentEntry() const;

Q_SIGNALS:
    void sidebarVisibleChanged();
    void sidebarShownChanged();
    void sidebarSectionChanged();
    void addressTextChanged();
    void displayNameChanged();
    void displayNameShownChanged();
    void canClearNetworkChanged();
    void displayModeChanged();
    void isFullScreenChanged();
    void wasMaximizedChanged();
    void controlsVisibleChanged();
    void controlsInUseChanged();
    void cursorHiddenChanged();
    void isOpeningChanged();
    void currentChannelChanged();
    void pictureNoticeChanged();
    void pictureErrorChanged();
    /// The user should be able to type an address now.
    void addressFieldRequested();
    /// The user should be able to search the channels now.
    void channelSearchRequested();
    /// The picture should move behind its column: by `amount` of the way from its middle to an
    /// edge, to the right if positive.
    void panRequested(double amount);

private:
    void observe(const QString &notification, QObject *object);
    bool openFiles(const QList<QUrl> &urls);
    void openFile(const QUrl &file);
    void openEntry(int index, bool isWish);
    void followItem();
    bool isForbidden(const QUrl &url) const;
    void openAddress(const QString &address);
    void observeError();
    void observePlaylist();
    void updateCanClearNetwork();
    void updatePictureError();
    void nameOpenedAddress();
    void applyFullScreen(bool fullScreen);
    void setWasMaximized(bool maximized);
    void updateControlsVisible();
    void setCursorHidden(bool hidden);
    bool skipFailed();
    void forgetItem();
    void setIsOpening(bool opening);
    void setCurrentChannel(int index);
    void setPictureNotice(const QString &notice);
    QString noticeFor(MediaPlayer::ItemFailure failure) const;

    PlayerModel &m_player;
    DefaultsWriter m_storedSidebar;
    DefaultsWriter m_storedDisplayMode;
    bool m_sidebarVisible = true;
    PlayerSidebarSection m_sidebarSection = PlayerSidebarSection::network;
    bool m_keepsSection = false;
    QString m_addressText;
    QString m_displayName;
    bool m_displayNameShown = false;
    bool m_canClearNetwork = false;
    PortraitDisplayMode m_displayMode = PortraitDisplayMode::normal;
    bool m_isFullScreen = false;
    bool m_windowFillsScreen = false;
    bool m_windowIsMaximized = false;
    bool m_wasMaximized = false;
    bool m_controlsShown = true;
    bool m_controlsInUse = false;
    bool m_controlsVisible = true;
    bool m_cursorHidden = false;
    bool m_isOpening = false;
    int m_currentChannel = -1;
    /// The channel that plays or has been stopped, and where it is in the playlist; -1 where the
    /// list is gone.
    std::optional<PlaylistEntry> m_lastEntry;
    int m_lastChannel = -1;
    /// The playlist's files were opened together.
    bool m_playsOn = false;
    /// How many of them in a row could not be played.
    int m_skipped = 0;
    QString m_pictureNotice;
    QString m_pictureError;
    /// The library's section tells it.
    bool m_errorIsTheLibrarys = false;
    DelayedTask m_autoOpenTask;
    DelayedTask m_fullScreenTask;
    DelayedTask m_controlsHideTask;
    DelayedTask m_cursorHideTask;
    DelayedTask m_openingTask;
    /// Pending while an error is new.
    DelayedTask m_errorHideTask;
};

} // namespace lumaro
