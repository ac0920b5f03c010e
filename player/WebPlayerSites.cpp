#include "player/PlayerModel.h"
#include "player/WebPlayerView.h"
#include "player/YouTubePage.h"

#include <QCoreApplication>

namespace lumaro {

// YouTube

YouTubePlayerView::YouTubePlayerView(const WebPlayerPlatform &platform, WebPlayerRegistry &registry,
                                     QObject *parent)
    : WebPlayerView(platform, registry, parent)
{
    connect(&player(), &PlayerModel::youtubeContentChanged, this, [this] { contentChanged(); });
}

QString YouTubePlayerView::contentID() const
{
    const auto &content = player().youtubeContent();
    return content ? content->id() : QString();
}

void YouTubePlayerView::load(PlayerPage &page) const
{
    page.loadHtml(youTubePage(*player().youtubeContent(), services()), services().product);
}

void YouTubePlayerView::ask(PlayerPage &page, PlayerPage::Answer answer) const
{
    page.ask(youTubePlaybackScript(), PlayerPage::World::Page, std::move(answer));
}

QString YouTubePlayerView::noPlayerText() const
{
    return QCoreApplication::translate(
        "WebPlayerSites", "YouTube's player does not appear. The connection may be gone.");
}

// OK.ru

OKVideoPlayerView::OKVideoPlayerView(const WebPlayerPlatform &platform, WebPlayerRegistry &registry,
                                     QObject *parent)
    : WebPlayerView(platform, registry, parent)
{
    connect(&player(), &PlayerModel::okVideoContentChanged, this, [this] { contentChanged(); });
}

QString OKVideoPlayerView::contentID() const
{
    const auto &content = player().okVideoContent();
    return content ? content->id() : QString();
}

void OKVideoPlayerView::load(PlayerPage &page) const
{
    page.load(player().okVideoContent()->embedURL(services()));
}

void OKVideoPlayerView::ask(PlayerPage &page, PlayerPage::Answer answer) const
{
    page.ask(videoPlaybackScript(), PlayerPage::World::Isolated, std::move(answer));
}

QString OKVideoPlayerView::errorText(int) const
{
    return QCoreApplication::translate("WebPlayerSites", "OK.ru's player cannot play this video.");
}

QString OKVideoPlayerView::noPlayerText() const
{
    return QCoreApplication::translate("WebPlayerSites", "OK.ru shows no video at this address.");
}

bool OKVideoPlayerView::isPlayerPage(const QUrl &url) const
{
    // The site may send its player to one of its other hosts.
    const auto &content = player().okVideoContent();
    if (!content)
        return false;
    const QUrl page = content->embedURL(services());
    const bool isOfTheSite =
        url.host() == page.host() || url.host().endsWith(QString(u'.' + page.host()));
    return isOfTheSite && url.scheme() == page.scheme() && url.path() == page.path();
}

} // namespace lumaro
