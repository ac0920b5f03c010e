#pragma once

#include "player/WebPlayerView.h"

#include <functional>

namespace lumaro {

/// The players of all sites, of which at most one shows anything, and the engine that their pages
/// need. Main thread.
class WebPlayers : public QObject
{
    Q_OBJECT
    Q_PROPERTY(lumaro::WebPlayerView *youTube READ youTube CONSTANT)
    Q_PROPERTY(lumaro::WebPlayerView *okVideo READ okVideo CONSTANT)
    /// Pages can be made.
    Q_PROPERTY(bool hasEngine READ hasEngine NOTIFY hasEngineChanged)
    /// One of the players is to be seen.
    Q_PROPERTY(bool wantsPage READ wantsPage NOTIFY changed)
    /// It has nothing to show yet.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    /// Why none is to be seen that should be, as a sentence; empty while there is no reason.
    Q_PROPERTY(QString failure READ failure NOTIFY changed)

public:
    /// `loadEngine` makes pages possible, and returns whether they are; it is called when the first
    /// is needed, and again if that failed.
    WebPlayers(const WebPlayerPlatform &platform, YouTubePlayerRegistry &youTube,
               OKVideoPlayerRegistry &okVideo, std::function<bool()> loadEngine,
               QObject *parent = nullptr);

    WebPlayerView *youTube() { return &m_youTube; }
    WebPlayerView *okVideo() { return &m_okVideo; }
    bool hasEngine() const { return m_hasEngine; }
    bool wantsPage() const { return m_youTube.wantsPage() || m_okVideo.wantsPage(); }
    bool isLoading() const { return m_youTube.isLoading() || m_okVideo.isLoading(); }
    const QString &failure() const;

    Q_INVOKABLE void retry();
    /// To be called when the players' views cannot be made although there is an engine. The next
    /// try begins with the engine.
    Q_INVOKABLE void failToShow();

Q_SIGNALS:
    void changed();
    void hasEngineChanged();

private:
    void requestEngine();
    void setHasEngine(bool hasEngine);

    YouTubePlayerView m_youTube;
    OKVideoPlayerView m_okVideo;
    std::function<bool()> m_loadEngine;
    bool m_hasEngine = false;
    DelayedTask m_loading;
};

} // namespace lumaro
