#pragma once

#include "platform/DelayedTask.h"
#include "platform/PlayerPage.h"
#include "player/PlayerRecordingSurface.h"
#include "player/WebPlayback.h"
#include "player/WebPlayerRegistry.h"
#include "player/WebServices.h"

#include <QObject>
#include <QPointer>

namespace lumaro {

class NotificationCenter;
class PlayerModel;
class Workspace;

/// What the embedded players work with. All of it outlives them.
struct WebPlayerPlatform
{
    PlayerModel &player;
    Scheduler &scheduler;
    Workspace &workspace;
    NotificationCenter &notifications;
    PlayerSurfaceRegistry &surfaces;
    WebServices services;
};

/// Shows the player model's content of one site in that site's own player: loads it into a page
/// when it changes, makes the page the one that commands go to and that is recorded, tells the
/// player model what the page tells, and says so when the site does not play. Main thread.
class WebPlayerView : public QObject
{
    Q_OBJECT
    /// There is content, and no failure: a page is to be attached.
    Q_PROPERTY(bool wantsPage READ wantsPage NOTIFY wantsPageChanged)
    /// Nothing of the site's is there to be seen yet.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    /// Why there is no picture, as a sentence; empty while there is no reason.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)

public:
    static constexpr std::chrono::milliseconds pollInterval{250};
    /// How long a page may take to load, and how long a player then to appear in it.
    static constexpr std::chrono::seconds loadPatience{45};
    static constexpr std::chrono::seconds playerPatience{20};
    /// How long a page may leave a question unanswered.
    static constexpr std::chrono::seconds answerPatience{15};
    /// Players try the next source, or the next video of a playlist, by themselves.
    static constexpr std::chrono::seconds errorPatience{2};
    /// How long an input accounts for what the page then opens, as in the engine.
    static constexpr std::chrono::seconds clickFreshness{5};

    ~WebPlayerView() override;

    /// The site's name.
    virtual QString siteName() const = 0;
    bool isShown() const { return !contentID().isEmpty(); }
    bool wantsPage() const { return isShown() && m_failure.isEmpty(); }
    bool isLoading() const;
    const QString &failure() const { return m_failure; }
    /// The content that the page shows; empty for none.
    const QString &loadedContentID() const { return m_loadedContentID; }

    /// Shows everything in `page` from now on, which `surface` shows to the user.
    void attach(PlayerPage *page, PlayerRecordingSurface *surface);
    /// To be called when `page` goes; another that has taken its place stays.
    void detach(const PlayerPage *page);
    /// The user presses a mouse button or a finger on the page, which is in `window`.
    void surfaceClicked(QObject *window);
    /// The user presses something in the page that may follow a link.
    void inputGiven();
    /// Loads everything anew.
    void retry();
    /// Gives up, for the reason that `sentence` tells the user.
    void fail(const QString &sentence);

Q_SIGNALS:
    void changed();
    void wantsPageChanged();

protected:
    WebPlayerView(const WebPlayerPlatform &platform, WebPlayerRegistry &registry, QObject *parent);

    /// To be called by a subclass when the player model has other content.
    void contentChanged();

    PlayerModel &player() const { return m_platform.player; }
    const WebServices &services() const { return m_platform.services; }

private:
    /// Empty without content.
    virtual QString contentID() const = 0;
    virtual void load(PlayerPage &page) const = 0;
    /// Asks the page for its WebPlayback.
    virtual void ask(PlayerPage &page, PlayerPage::Answer answer) const = 0;
    virtual QString errorText(int error) const = 0;
    /// There is a page, but no player comes to be in it.
    virtual QString noPlayerText() const = 0;
    /// The page has nothing of its own to show before its player is ready.
    virtual bool isBlankUntilReady() const = 0;
    /// Where the page may take itself.
    virtual bool isPlayerPage(const QUrl &url) const = 0;

    /// What is known of the page since it was last loaded.
    struct Watch
    {
        /// Since when the user waits.
        Scheduler::TimePoint since;
        bool pageIsThere = false;
        /// There is a player now; there has been one; it has had media.
        bool isReady = false;
        bool wasReady = false;
        bool wasHeard = false;
        std::optional<Scheduler::TimePoint> askedAt;
        std::optional<Scheduler::TimePoint> errorSince;
        /// Since when it tells neither that it plays nor that it does not.
        std::optional<Scheduler::TimePoint> undecidedSince;
    };

    void announce();
    void update();
    void dismantle();
    void tick();
    void hear(const QVariant &answer);
    void hearPlayback(WebPlayback playback);
    void hearError(int error);
    bool standsStill(const WebPlayback &playback);
    /// Why waiting for the page has no use any more; empty while it has.
    QString reasonToGiveUp() const;
    QString doesNotAnswer() const;
    bool mayGo(const NavigationAction &action);
    void openOutside(const NavigationAction &action);

    WebPlayerPlatform m_platform;
    WebPlayerRegistry &m_registry;
    QPointer<PlayerPage> m_page;
    PlayerRecordingSurface *m_surface = nullptr;
    QString m_loadedContentID;
    QString m_failure;
    bool m_wantedPage = false;
    Watch m_watch;
    /// Answers to questions before the last load are stale.
    quint64 m_loadNumber = 0;
    std::optional<Scheduler::TimePoint> m_inputAt;
    DelayedTask m_poll;
};

/// Shows the player model's YouTube content.
class YouTubePlayerView final : public WebPlayerView
{
    Q_OBJECT

public:
    YouTubePlayerView(const WebPlayerPlatform &platform, WebPlayerRegistry &registry,
                      QObject *parent = nullptr);

    QString siteName() const override { return QStringLiteral("YouTube"); }

private:
    QString contentID() const override;
    void load(PlayerPage &page) const override;
    void ask(PlayerPage &page, PlayerPage::Answer answer) const override;
    QString errorText(int error) const override { return youTubeErrorText(error); }
    QString noPlayerText() const override;
    bool isBlankUntilReady() const override { return true; }
    bool isPlayerPage(const QUrl &) const override { return false; }
};

/// Shows the player model's OK.ru content.
class OKVideoPlayerView final : public WebPlayerView
{
    Q_OBJECT

public:
    OKVideoPlayerView(const WebPlayerPlatform &platform, WebPlayerRegistry &registry,
                      QObject *parent = nullptr);

    QString siteName() const override { return QStringLiteral("OK.ru"); }

private:
    QString contentID() const override;
    void load(PlayerPage &page) const override;
    void ask(PlayerPage &page, PlayerPage::Answer answer) const override;
    QString errorText(int error) const override;
    QString noPlayerText() const override;
    /// It may ask for something to be agreed to.
    bool isBlankUntilReady() const override { return false; }
    bool isPlayerPage(const QUrl &url) const override;
};

} // namespace lumaro
