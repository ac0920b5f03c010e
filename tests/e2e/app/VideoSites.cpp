#include "tests/e2e/app/VideoSites.h"

#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

/// A file that lies beside this one.
QString siteFile(const QString &name)
{
    return QStringLiteral(LUMARO_SITES) + u'/' + name;
}

} // namespace

std::unique_ptr<VideoSites> VideoSites::start()
{
    auto sites = std::make_unique<VideoSites>();
    sites->m_server = valueOrFail(NginxServer::start());
    if (!sites->m_server)
        return nullptr;
    const NginxServer &server = *sites->m_server;
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    bool published = sites->setYouTubeReachable(true)
        && server.publish(valueOrFail(media.path(Fixture::SmallMovie)), u"clip1.mp4"_s)
        && server.publish(valueOrFail(media.path(Fixture::SmallClip)), u"clip2.mp4"_s)
        && server.publish(valueOrFail(media.path(Fixture::RandomBytes)), u"noise.mp4"_s)
        && server.writeFile(u"file.zip"_s, QByteArray(1000, 'z'))
        && server.writeFile(u"outside.html"_s, "<!DOCTYPE html>Outside");
    for (const QString &page : {u"embed.html"_s, u"witness.js"_s})
        published = published && server.publish(siteFile(page), page);
    for (const QString &name :
         {u"12345"_s, u"67890"_s, u"late"_s, u"stay"_s, u"broken"_s, u"leave"_s, u"link"_s,
          u"window"_s, u"popup"_s, u"full"_s, u"grab"_s})
        published = published && server.publish(siteFile(u"ok.html"_s), u"videoembed/"_s + name);
    if (!published)
        return nullptr;
    return sites;
}

WebServices VideoSites::services() const
{
    const QUrl url = m_server->url({});
    // An origin without protection, like the server: to such, those with it do not tell who they
    // are.
    return {.youTube = url, .okVideo = url, .product = QUrl(u"http://player.example"_s)};
}

bool VideoSites::wasTold(const QString &what) const
{
    return wasAsked(u"/told/"_s + what);
}

qsizetype VideoSites::beats(const QString &site) const
{
    const QStringList log = requests();
    return std::ranges::count_if(log, [&](const QString &line) {
        return line.startsWith(u"GET /told/"_s + site) && line.contains(u"/beat "_s);
    });
}

bool VideoSites::fallSilent(const QString &site) const
{
    constexpr qint64 longEnough = 1000;
    qsizetype last = -1;
    QElapsedTimer silence;
    return becomesTrue([&] {
        const qsizetype now = beats(site);
        if (std::exchange(last, now) != now)
            silence.start();
        return silence.hasExpired(longEnough);
    });
}

bool VideoSites::wasAsked(const QString &path) const
{
    const QString beginning = u"GET "_s + path + u' ';
    const QStringList log = requests();
    return std::ranges::any_of(
        log, [&beginning](const QString &line) { return line.startsWith(beginning); });
}

bool VideoSites::setYouTubeReachable(bool reachable) const
{
    const QString api = m_server->documentRoot() + u"/iframe_api"_s;
    return reachable ? m_server->publish(siteFile(u"iframe_api.js"_s), u"iframe_api"_s)
                     : QFile::remove(api);
}

} // namespace lumaro
