#include "app/MainWindowModel.h"

#include "platform/NotificationCenter.h"
#include "player/PlaylistFile.h"

#include <QVariant>

#include <algorithm>

namespace lumaro {

namespace {

QString sidebarVisibleKey()
{
    return QStringLiteral("Lumaro.MainWindow.SidebarVisible");
}

QString displayModeKey()
{
    return QStringLiteral("Lumaro.MainWindow.DisplayMode");
}

/// The name for what an address opens; absent when the field is not shown.
std::optional<QString> optionalName(bool shown, const QString &name)
{
    return shown ? std::optional(name) : std::nullopt;
}

} // namespace

MainWindowModel::MainWindowModel(PlayerModel &player, MediaPlayer &mediaPlayer,
                                 Scheduler &scheduler, NotificationCenter &notifications,
                                 UserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_player(player)
    // A choice that could not be stored is made again next time; nothing is lost.
    , m_storedSidebar(defaults, scheduler, sidebarVisibleKey(), [](const auto &) { })
    , m_storedDisplayMode(defaults, scheduler, displayModeKey(), [](const auto &) { })
    , m_autoOpenTask(scheduler)
    , m_fullScreenTask(scheduler)
    , m_controlsHideTask(scheduler)
    , m_cursorHideTask(scheduler)
    , m_openingTask(scheduler)
    , m_errorHideTask(scheduler)
{
    m_sidebarVisible = defaults.data(sidebarVisibleKey()) != "false";
    const QByteArray mode = defaults.data(displayModeKey()).value_or(QByteArray());
    m_displayMode = portraitDisplayMode(QString::fromUtf8(mode)).value_or(m_displayMode);
    connect(&notifications, &NotificationCenter::posted, this, &MainWindowModel::observe);
    connect(&mediaPlayer, &MediaPlayer::itemFailed, this, [this](MediaPlayer::ItemFailure failure) {
        setIsOpening(false);
        // Where no picture can be drawn, the next file's cannot either.
        if (failure == MediaPlayer::ItemFailure::NoPicture || !skipFailed())
            setPictureNotice(noticeFor(failure));
    });
    connect(&mediaPlayer, &MediaPlayer::itemStarted, this, [this] {
        setIsOpening(false);
        // An item that failed may have been tried again.
        setPictureNotice(QString());
        m_skipped = 0;
    });
    connect(&player, &PlayerModel::mediaLoadIDChanged, this, [this] {
        forgetItem();
        m_openingTask.start(openingDelay, [this] { setIsOpening(true); });
    });
    connect(&player, &PlayerModel::currentURLChanged, this, [this] {
        if (m_player.currentURL().isEmpty())
            forgetItem();
    });
    connect(&player, &PlayerModel::isPlayingChanged, this,
            &MainWindowModel::showFullScreenControls);
    connect(&mediaPlayer, &MediaPlayer::itemEnded, this, [this] {
        if (m_playsOn)
            openEntry(channelBeside(+1), false);
    });
    connect(&mediaPlayer, &MediaPlayer::itemBrokeOff, this, [this] {
        m_player.showToast(tr("The stream has ended. Space opens it again."),
                           PlayerModel::toastDuration);
    });
    connect(&player, &PlayerModel::isLoadingChanged, this,
            [this] { m_keepsSection = m_keepsSection && m_player.isLoading(); });
    connect(&player, &PlayerModel::playlistChanged, this, &MainWindowModel::observePlaylist);
    connect(&player, &PlayerModel::errorMessageChanged, this, &MainWindowModel::observeError);
    for (const auto changed : {&PlayerModel::playlistChanged, &PlayerModel::errorMessageChanged,
                               &PlayerModel::currentURLChanged, &PlayerModel::isLoadingChanged,
                               &PlayerModel::showsWebContentChanged})
        connect(&player, changed, this, &MainWindowModel::updateCanClearNetwork);
    connect(this, &MainWindowModel::addressTextChanged, this,
            &MainWindowModel::updateCanClearNetwork);
    for (const auto changed :
         {&MainWindowModel::sidebarShownChanged, &MainWindowModel::sidebarSectionChanged,
          &MainWindowModel::controlsVisibleChanged})
        connect(this, changed, this, &MainWindowModel::updatePictureError);
}

void MainWindowModel::observePlaylist()
{
    m_playsOn = false;
    m_skipped = 0;
    m_lastChannel = -1;
    setCurrentChannel(-1);
    const PlaylistEntries &playlist = m_player.playlist();
    if (playlist.isEmpty() || m_keepsSection)
        return;
    setSidebarSection(PlayerSidebarSection::network);
    setSidebarVisible(true);
    // Files that were opened together, which nobody had to load, are seen playing.
    if (!sidebarShown() && m_player.isLoading())
        m_player.showToast(playlist.size() == 1 ? tr("Opened a list of 1 channel.")
                                                : tr("Opened a list of %Ln channels.", nullptr,
                                                     int(playlist.size())),
                           PlayerModel::toastDuration);
}

void MainWindowModel::setSidebarVisible(bool visible)
{
    if (m_sidebarVisible == visible)
        return;
    m_sidebarVisible = visible;
    m_storedSidebar.write([visible] { return QByteArray(visible ? "true" : "false"); });
    Q_EMIT sidebarVisibleChanged();
    if (!m_isFullScreen)
        Q_EMIT sidebarShownChanged();
}

void MainWindowModel::toggleSidebar()
{
    if (sidebarShown())
        setSidebarVisible(false);
    else
        revealSidebar(m_sidebarSection);
}

void MainWindowModel::setSidebarSection(PlayerSidebarSection section)
{
    if (m_sidebarSection == section)
        return;
    m_sidebarSection = section;
    Q_EMIT sidebarSectionChanged();
}

void MainWindowModel::revealSidebar(PlayerSidebarSection section)
{
    setIsFullScreen(false);
    setSidebarSection(section);
    setSidebarVisible(true);
}

void MainWindowModel::setAddressText(const QString &text)
{
    if (m_addressText == text)
        return;
    m_addressText = text;
    Q_EMIT addressTextChanged();
    scheduleAutomaticOpen(text);
}

void MainWindowModel::setDisplayName(const QString &name)
{
    if (m_displayName == name)
        return;
    m_displayName = name;
    Q_EMIT displayNameChanged();
    nameOpenedAddress();
}

void MainWindowModel::setDisplayNameShown(bool shown)
{
    if (m_displayNameShown == shown)
        return;
    m_displayNameShown = shown;
    Q_EMIT displayNameShownChanged();
    if (shown && !m_displayName.isEmpty())
        nameOpenedAddress();
}

void MainWindowModel::setDisplayMode(PortraitDisplayMode mode)
{
    if (m_displayMode == mode)
        return;
    m_displayMode = mode;
    m_storedDisplayMode.write([mode] { return rawValue(mode).toUtf8(); });
    Q_EMIT displayModeChanged();
}

void MainWindowModel::setIsFullScreen(bool fullScreen)
{
    if (m_isFullScreen == fullScreen)
        return;
    m_fullScreenTask.start(fullScreenPatience, [this] {
        if (!m_windowFillsScreen)
            setWasMaximized(m_windowIsMaximized);
        applyFullScreen(m_windowFillsScreen);
    });
    applyFullScreen(fullScreen);
}

void MainWindowModel::windowFillsScreen(bool fills)
{
    m_windowFillsScreen = fills;
    if (!m_fullScreenTask.isPending())
        applyFullScreen(fills);
}

void MainWindowModel::windowIsMaximized(bool maximized)
{
    m_windowIsMaximized = maximized;
    // On its way into full screen and out of it, it may be anything.
    if (!m_fullScreenTask.isPending())
        setWasMaximized(maximized);
}

void MainWindowModel::setWasMaximized(bool maximized)
{
    if (m_wasMaximized == maximized)
        return;
    m_wasMaximized = maximized;
    Q_EMIT wasMaximizedChanged();
}

void MainWindowModel::applyFullScreen(bool fullScreen)
{
    if (m_isFullScreen == fullScreen)
        return;
    m_isFullScreen = fullScreen;
    if (!fullScreen) {
        m_cursorHideTask.cancel();
        setCursorHidden(false);
    }
    Q_EMIT isFullScreenChanged();
    if (m_sidebarVisible)
        Q_EMIT sidebarShownChanged();
    showFullScreenControls();
}

// Opening

void MainWindowModel::scheduleAutomaticOpen(const QString &text)
{
    m_autoOpenTask.cancel();
    const QString address = normalizedRemoteAddress(text);
    if (!remoteUrl(address))
        return;
    m_autoOpenTask.start(automaticOpenDelay, [this, address] { openAddress(address); });
}

void MainWindowModel::openAddress(const QString &address)
{
    m_player.openRemote(address, optionalName(m_displayNameShown, m_displayName));
}

/// The address may have opened before its name was typed.
void MainWindowModel::nameOpenedAddress()
{
    const auto typed = remoteUrl(normalizedRemoteAddress(m_addressText));
    if (typed && m_displayNameShown && m_player.currentURL() == *typed)
        m_player.updateStreamTitle(m_displayName);
}

bool MainWindowModel::openTypedAddress()
{
    m_autoOpenTask.cancel();
    if (m_addressText.trimmed().isEmpty())
        return true;
    openAddress(m_addressText);
    return m_player.errorMessage().isEmpty();
}

void MainWindowModel::clearNetwork()
{
    setAddressText(QString());
    setDisplayName(QString());
    m_player.clearNetworkStream();
}

void MainWindowModel::updateCanClearNetwork()
{
    const bool can = !m_addressText.isEmpty() || !m_player.playlist().isEmpty()
        || !m_player.currentURL().isEmpty() || !m_player.errorMessage().isEmpty()
        || m_player.isLoading() || m_player.showsWebContent();
    if (m_canClearNetwork == can)
        return;
    m_canClearNetwork = can;
    Q_EMIT canClearNetworkChanged();
}

void MainWindowModel::open(const QStringList &filesAndAddresses, const QString &workingFolder)
{
    QList<QUrl> urls;
    for (const QString &text : filesAndAddresses) {
        const bool isBracketed = text.trimmed().startsWith(u'<');
        urls.append(isBracketed ? QUrl()
                                : QUrl::fromUserInput(text, workingFolder, QUrl::AssumeLocalFile));
    }
    if (openFiles(urls))
        return;
    if (urls.value(0).isLocalFile())
        openFile(urls.first());
    else
        // An address goes on as it was written; only its cleaning decides what it means.
        m_player.openRemote(filesAndAddresses.value(0), std::nullopt);
}

bool MainWindowModel::openDropped(const QList<QUrl> &urls, const QString &text)
{
    if (openFiles(urls))
        return true;
    if (!urls.isEmpty()) {
        if (urls.first().isLocalFile())
            openFile(urls.first());
        else
            m_player.openRemote(urls.first().toString(QUrl::FullyEncoded), std::nullopt);
        return true;
    }
    if (text.trimmed().isEmpty())
        return false;
    m_player.openRemote(text, std::nullopt);
    return true;
}

/// False when only the first is to be opened.
bool MainWindowModel::openFiles(const QList<QUrl> &urls)
{
    if (urls.size() < 2)
        return false;
    const auto isMediaFile = [](const QUrl &url) {
        return url.isLocalFile() && !isChannelListFile(url);
    };
    QList<QUrl> files;
    if (isMediaFile(urls.first()))
        std::ranges::copy_if(urls, std::back_inserter(files), isMediaFile);
    const bool areFiles = files.size() > 1;
    if (areFiles) {
        m_player.playFiles(files);
        m_lastEntry = m_player.playlist().at(0);
        m_lastChannel = 0;
        setCurrentChannel(0);
        m_playsOn = true;
    }
    const qsizetype opened = areFiles ? files.size() : 1;
    if (opened < urls.size())
        m_player.showToast(openedOf(opened, urls.size()), PlayerModel::toastDuration);
    return areFiles;
}

QString MainWindowModel::openedOf(qsizetype opened, qsizetype all)
{
    return tr("Opened %1 of %n items.", nullptr, int(all)).arg(opened);
}

void MainWindowModel::openFile(const QUrl &file)
{
    if (isChannelListFile(file))
        m_player.importM3UFile(file, std::nullopt);
    else
        m_player.playFile(file);
}

void MainWindowModel::openFile()
{
    m_player.openFile();
}

void MainWindowModel::importPlaylist()
{
    m_player.importLocalM3U(optionalName(m_displayNameShown, m_displayName));
}

void MainWindowModel::playChannel(int index)
{
    openEntry(index, true);
}

void MainWindowModel::openEntry(int index, bool isWish)
{
    const std::optional<PlaylistEntry> entry = usableEntry(index);
    if (!entry)
        return;
    m_lastEntry = entry;
    m_lastChannel = index;
    const bool isLiveStream = pathExtension(entry->url) == u"m3u8";
    if (isWish)
        m_player.play(entry->url, entry->name, isLiveStream);
    else
        m_player.playOn(entry->url, entry->name, isLiveStream);
}

/// What has been stopped may be played again, and is then the channel that it was.
void MainWindowModel::followItem()
{
    const QUrl &url = m_player.currentURL();
    if (!url.isEmpty() && (!m_lastEntry || m_lastEntry->url != url)) {
        m_lastEntry.reset();
        m_lastChannel = -1;
    }
    setCurrentChannel(url.isEmpty() ? -1 : m_lastChannel);
}

/// Goes on from a file that cannot be played; false where nothing follows.
bool MainWindowModel::skipFailed()
{
    const int next = m_playsOn ? channelBeside(+1) : -1;
    if (next < 0)
        return false;
    const QString name = m_player.itemTitle();
    openEntry(next, false);
    m_player.showToast(++m_skipped == 1
                           ? tr("Skipped %1, which cannot be played.").arg(name)
                           : tr("Skipped %n files that cannot be played.", nullptr, m_skipped),
                       PlayerModel::toastDuration);
    return true;
}

std::optional<PlaylistEntry> MainWindowModel::currentEntry() const
{
    return m_player.currentURL().isEmpty() ? std::nullopt : m_lastEntry;
}

int MainWindowModel::channelBeside(int step) const
{
    // A list may be long, and this is asked often.
    constexpr int farthest = 1000;
    const PlaylistEntries &playlist = m_player.playlist();
    for (int i = 1; i <= farthest && m_currentChannel >= 0; ++i) {
        const int channel = m_currentChannel + i * step;
        if (channel < 0 || channel >= playlist.size())
            break;
        if (!isForbidden(playlist.at(channel).url))
            return channel;
    }
    return -1;
}

bool MainWindowModel::isForbidden(const QUrl &url) const
{
    // A server does not choose what is read on this computer.
    return url.isLocalFile() && m_player.isPlaylistRemote();
}

std::optional<PlaylistEntry> MainWindowModel::usableEntry(int index)
{
    const PlaylistEntries &playlist = m_player.playlist();
    if (index < 0 || index >= playlist.size())
        return std::nullopt;
    PlaylistEntry entry = playlist.at(index);
    if (isForbidden(entry.url)) {
        m_player.showToast(tr("A playlist from the network cannot open files on this computer."),
                           PlayerModel::toastDuration);
        return std::nullopt;
    }
    if (entry.logoURL && isForbidden(*entry.logoURL))
        entry.logoURL.reset();
    return entry;
}

void MainWindowModel::setCurrentChannel(int index)
{
    if (m_currentChannel == index)
        return;
    m_currentChannel = index;
    Q_EMIT currentChannelChanged();
}

// Controls and pointer

void MainWindowModel::observe(const QString &name, QObject *object)
{
    if (name == notification::playerMouseMoved || name == notification::playerSurfaceClicked) {
        setCursorHidden(false);
        showFullScreenControls();
        scheduleCursorHideIfNeeded(object);
    } else if (name == notification::openLocalM3UTab) {
        revealSidebar(PlayerSidebarSection::localM3U);
    }
}

void MainWindowModel::showFullScreenControls()
{
    m_controlsShown = true;
    updateControlsVisible();
    m_controlsHideTask.start(controlsHideDelay, [this] {
        m_controlsShown = false;
        updateControlsVisible();
    });
}

void MainWindowModel::setControlsInUse(bool inUse)
{
    if (m_controlsInUse == inUse)
        return;
    m_controlsInUse = inUse;
    Q_EMIT controlsInUseChanged();
    // Leaving them starts the pause before they go.
    showFullScreenControls();
}

bool MainWindowModel::controlsVisible() const
{
    return m_controlsVisible;
}

void MainWindowModel::updateControlsVisible()
{
    const bool visible = m_controlsShown || m_controlsInUse || !m_player.isPlaying();
    if (m_controlsVisible == visible)
        return;
    m_controlsVisible = visible;
    Q_EMIT controlsVisibleChanged();
}

void MainWindowModel::scheduleCursorHideIfNeeded(QObject *window)
{
    m_cursorHideTask.cancel();
    if (!m_isFullScreen || !window)
        return;
    m_cursorHideTask.start(cursorHideDelay, [this, window = QPointer(window)] {
        if (window && window->property("active").toBool() && !m_controlsInUse)
            setCursorHidden(true);
    });
}

void MainWindowModel::setCursorHidden(bool hidden)
{
    if (m_cursorHidden == hidden)
        return;
    m_cursorHidden = hidden;
    Q_EMIT cursorHiddenChanged();
}

// Over the picture

void MainWindowModel::forgetItem()
{
    setIsOpening(false);
    setPictureNotice(QString());
    followItem();
}

void MainWindowModel::setIsOpening(bool opening)
{
    m_openingTask.cancel();
    if (m_isOpening == opening)
        return;
    m_isOpening = opening;
    Q_EMIT isOpeningChanged();
}

void MainWindowModel::setPictureNotice(const QString &notice)
{
    if (m_pictureNotice == notice)
        return;
    m_pictureNotice = notice;
    Q_EMIT pictureNoticeChanged();
}

void MainWindowModel::observeError()
{
    m_errorIsTheLibrarys = m_keepsSection;
    m_errorHideTask.cancel();
    if (!m_player.errorMessage().isEmpty())
        m_errorHideTask.start(errorHideDelay, [this] { updatePictureError(); });
    updatePictureError();
}

void MainWindowModel::updatePictureError()
{
    const bool isToldBeside = sidebarShown() && (!showsLocalM3U() || m_errorIsTheLibrarys);
    const bool isWanted = m_controlsVisible || m_errorHideTask.isPending();
    const QString error = isWanted && !isToldBeside ? m_player.errorMessage() : QString();
    if (m_pictureError == error)
        return;
    m_pictureError = error;
    Q_EMIT pictureErrorChanged();
}

QString MainWindowModel::noticeFor(MediaPlayer::ItemFailure failure) const
{
    switch (failure) {
    case MediaPlayer::ItemFailure::Unreachable:
        return m_player.currentURL().isLocalFile()
            ? tr("This file cannot be opened. It may have been moved or deleted.")
            : tr("This address does not answer. It may be offline or out of date.");
    case MediaPlayer::ItemFailure::Unplayable:
        return tr("There is nothing here that Lumaro can play.");
    case MediaPlayer::ItemFailure::NoPicture:
        return tr("Lumaro cannot show pictures here. It needs OpenGL.");
    case MediaPlayer::ItemFailure::Unsupported:
        return tr("Lumaro does not open addresses of this kind.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
