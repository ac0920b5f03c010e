#include "player/WebPlayers.h"

#include <QCoreApplication>

namespace lumaro {

WebPlayers::WebPlayers(const WebPlayerPlatform &platform, YouTubePlayerRegistry &youTube,
                       OKVideoPlayerRegistry &okVideo, std::function<bool()> loadEngine,
                       QObject *parent)
    : QObject(parent)
    , m_youTube(platform, youTube)
    , m_okVideo(platform, okVideo)
    , m_loadEngine(std::move(loadEngine))
    , m_loading(platform.scheduler)
{
    for (WebPlayerView *const view :
         std::initializer_list<WebPlayerView *>{&m_youTube, &m_okVideo}) {
        connect(view, &WebPlayerView::changed, this, &WebPlayers::requestEngine);
        connect(view, &WebPlayerView::changed, this, &WebPlayers::changed);
    }
}

const QString &WebPlayers::failure() const
{
    return m_youTube.failure().isEmpty() ? m_okVideo.failure() : m_youTube.failure();
}

void WebPlayers::retry()
{
    m_youTube.retry();
    m_okVideo.retry();
}

void WebPlayers::requestEngine()
{
    if (m_hasEngine || m_loading.isPending() || !wantsPage())
        return;
    // It takes a while, so the window first shows that something happens.
    m_loading.start({}, [this] {
        if (m_loadEngine())
            setHasEngine(true);
        else
            failToShow();
    });
}

void WebPlayers::setHasEngine(bool hasEngine)
{
    if (std::exchange(m_hasEngine, hasEngine) != hasEngine)
        Q_EMIT hasEngineChanged();
}

void WebPlayers::failToShow()
{
    const QString sentence =
        QCoreApplication::translate("WebPlayers", "The web player could not be loaded.");
    m_youTube.fail(sentence);
    m_okVideo.fail(sentence);
    setHasEngine(false);
}

} // namespace lumaro
