#include "player/WebPlayerView.h"

#include "platform/NotificationCenter.h"
#include "platform/Workspace.h"
#include "player/PlayerModel.h"

#include <QCoreApplication>

namespace lumaro {

WebPlayerView::WebPlayerView(const WebPlayerPlatform &platform, WebPlayerRegistry &registry,
                             QObject *parent)
    : QObject(parent)
    , m_platform(platform)
    , m_registry(registry)
    , m_poll(platform.scheduler)
{
    connect(&player(), &PlayerModel::isPlayingChanged, this, [this] {
        // Whoever presses Play on a failure wants it tried again.
        if (!m_failure.isEmpty() && player().isPlaying())
            retry();
    });
}

WebPlayerView::~WebPlayerView()
{
    dismantle();
}

bool WebPlayerView::isLoading() const
{
    const bool isBlank = !m_watch.pageIsThere || isBlankUntilReady();
    return wantsPage() && !m_watch.wasReady && isBlank;
}

void WebPlayerView::announce()
{
    Q_EMIT changed();
    if (std::exchange(m_wantedPage, wantsPage()) != m_wantedPage)
        Q_EMIT wantsPageChanged();
}

// The page

void WebPlayerView::attach(PlayerPage *page, PlayerRecordingSurface *surface)
{
    dismantle();
    m_page = page;
    m_surface = surface;
    if (!m_page)
        return;
    m_page->setNavigationPolicy([this, guard = QPointer(this)](const NavigationAction &action) {
        return guard && mayGo(action);
    });
    connect(m_page, &PlayerPage::loadFinished, this, [this] {
        m_watch.pageIsThere = true;
        m_watch.since = m_platform.scheduler.now();
        // What was asked before may have gone to the document that was there before.
        m_watch.askedAt.reset();
        announce();
    });
    connect(m_page, &PlayerPage::loadFailed, this, &WebPlayerView::fail);
    connect(m_page, &PlayerPage::crashed, this, [this] {
        fail(QCoreApplication::translate("WebPlayerView", "The page with the player has crashed."));
    });
    update();
}

void WebPlayerView::detach(const PlayerPage *page)
{
    if (m_page == page)
        dismantle();
}

void WebPlayerView::update()
{
    if (!m_page || !wantsPage())
        return;
    m_registry.setCurrentView(m_page);
    m_platform.surfaces.setCurrentSurface(m_surface);
    const QString id = contentID();
    if (m_loadedContentID == id)
        return;
    m_loadedContentID = id;
    ++m_loadNumber;
    m_watch = {};
    m_watch.since = m_platform.scheduler.now();
    load(*m_page);
    m_poll.start(pollInterval, [this] { tick(); });
    announce();
}

void WebPlayerView::dismantle()
{
    m_poll.cancel();
    ++m_loadNumber;
    m_loadedContentID.clear();
    m_inputAt.reset();
    m_watch = {};
    if (m_page) {
        m_page->disconnect(this);
        m_page->setNavigationPolicy({});
    }
    m_registry.clear(m_page);
    m_platform.surfaces.clear(m_surface);
    m_page = nullptr;
    m_surface = nullptr;
}

void WebPlayerView::contentChanged()
{
    m_failure.clear();
    if (isShown())
        update();
    else
        dismantle();
    announce();
}

void WebPlayerView::retry()
{
    if (m_failure.isEmpty())
        return;
    m_failure.clear();
    player().webPlaybackRestarted();
    announce();
}

void WebPlayerView::fail(const QString &sentence)
{
    if (!isShown())
        return;
    dismantle();
    m_failure = sentence;
    player().webPlaybackFailed();
    announce();
}

// What it tells

void WebPlayerView::tick()
{
    if (!m_page)
        return;
    if (const QString reason = reasonToGiveUp(); !reason.isEmpty()) {
        fail(reason);
        return;
    }
    m_poll.start(pollInterval, [this] { tick(); });
    if (m_watch.askedAt)
        return;
    m_watch.askedAt = m_platform.scheduler.now();
    ask(*m_page, [this, guard = QPointer(this), load = m_loadNumber](const QVariant &answer) {
        if (guard && load == m_loadNumber)
            hear(answer);
    });
}

QString WebPlayerView::reasonToGiveUp() const
{
    const Scheduler::TimePoint now = m_platform.scheduler.now();
    if (m_watch.askedAt && now - *m_watch.askedAt > answerPatience)
        return QCoreApplication::translate("WebPlayerView",
                                           "The page with the player does not answer.");
    if (m_watch.isReady || m_watch.wasHeard)
        return {};
    if (!m_watch.pageIsThere)
        return now - m_watch.since > loadPatience ? doesNotAnswer() : QString();
    return now - m_watch.since > playerPatience ? noPlayerText() : QString();
}

QString WebPlayerView::doesNotAnswer() const
{
    return QCoreApplication::translate("WebPlayerView",
                                       "%1 does not answer. The connection may be gone.")
        .arg(siteName());
}

void WebPlayerView::hear(const QVariant &answer)
{
    m_watch.askedAt.reset();
    const std::optional<WebPlayback> playback = readWebPlayback(answer);
    if (!playback)
        return;
    if (playback->stage == WebPlayback::Stage::NoPlayer && m_watch.pageIsThere) {
        fail(doesNotAnswer());
        return;
    }
    hearPlayback(*playback);
    hearError(playback->error);
}

void WebPlayerView::hearPlayback(WebPlayback playback)
{
    m_watch.isReady = playback.stage == WebPlayback::Stage::Ready;
    if (m_watch.isReady) {
        const bool isFirst = !std::exchange(m_watch.wasReady, true);
        const bool hasMedia = playback.duration > 0 || playback.isPlaying.value_or(false);
        const bool hasFirstMedia = hasMedia && !std::exchange(m_watch.wasHeard, true);
        // Sites that remember a volume may set theirs when the media comes.
        if (isFirst || hasFirstMedia)
            player().webPlayerBecameReady();
        if (isFirst)
            announce();
    }
    const bool isStill = standsStill(playback);
    if (isStill)
        playback.isPlaying = false;
    if (m_watch.isReady || isStill)
        player().observeWebPlayback(playback);
}

bool WebPlayerView::standsStill(const WebPlayback &playback)
{
    if (!m_watch.wasReady || playback.isPlaying) {
        m_watch.undecidedSince.reset();
        return false;
    }
    const Scheduler::TimePoint now = m_platform.scheduler.now();
    if (!m_watch.undecidedSince)
        m_watch.undecidedSince = now;
    return now - *m_watch.undecidedSince >= playerPatience;
}

void WebPlayerView::hearError(int error)
{
    if (error == 0) {
        m_watch.errorSince.reset();
        return;
    }
    const Scheduler::TimePoint now = m_platform.scheduler.now();
    if (!m_watch.errorSince)
        m_watch.errorSince = now;
    else if (now - *m_watch.errorSince >= errorPatience)
        fail(errorText(error));
}

// The user

void WebPlayerView::inputGiven()
{
    m_inputAt = m_platform.scheduler.now();
    // There may be something to be agreed to before a player comes.
    m_watch.since = *m_inputAt;
}

void WebPlayerView::surfaceClicked(QObject *window)
{
    inputGiven();
    m_platform.notifications.post(QString::fromUtf16(notification::playerSurfaceClicked), window);
}

bool WebPlayerView::mayGo(const NavigationAction &action)
{
    using Target = NavigationAction::Target;
    if (action.target == Target::SubFrame)
        return true;
    if (action.target == Target::MainFrame && isPlayerPage(action.url))
        return true;
    openOutside(action);
    return false;
}

void WebPlayerView::openOutside(const NavigationAction &action)
{
    const bool isOfTheWeb = action.url.scheme() == u"https" || action.url.scheme() == u"http";
    if (!action.isLinkClick || !isOfTheWeb || !m_inputAt)
        return;
    // One input opens one page.
    const Scheduler::TimePoint inputAt = *std::exchange(m_inputAt, std::nullopt);
    if (m_platform.scheduler.now() - inputAt <= clickFreshness)
        m_platform.workspace.openInBrowser(action.url);
}

} // namespace lumaro
