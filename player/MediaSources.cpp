#include "player/MediaSources.h"

#include <QUrlQuery>

#include <algorithm>
#include <array>

namespace lumaro {

namespace {

bool isDomainOrSubdomain(QStringView host, QStringView domain)
{
    if (!host.endsWith(domain))
        return false;
    const QStringView before = host.chopped(domain.size());
    return before.isEmpty() || before.endsWith(u'.');
}

/// The components between the slashes, each percent-decoded.
QStringList pathComponents(const QUrl &url)
{
    QStringList components = url.path(QUrl::FullyEncoded).split(u'/', Qt::SkipEmptyParts);
    for (QString &component : components)
        component = QUrl::fromPercentEncoding(component.toUtf8());
    return components;
}

/// The component right after the first that is one of `markers`.
std::optional<QString> componentAfter(const QStringList &components, const QStringList &markers)
{
    const auto marker = std::ranges::find_if(
        components, [&](const QString &component) { return markers.contains(component); });
    if (marker == components.end() || std::next(marker) == components.end())
        return std::nullopt;
    return *std::next(marker);
}

/// The value of the first query item with exactly this name.
std::optional<QString> queryValue(const QUrl &url, const QString &name)
{
    const QUrlQuery query(url);
    if (!query.hasQueryItem(name))
        return std::nullopt;
    return query.queryItemValue(name, QUrl::FullyDecoded);
}

std::optional<QString> trimmedOrAbsent(const std::optional<QString> &value)
{
    if (!value || value->trimmed().isEmpty())
        return std::nullopt;
    return value->trimmed();
}

std::optional<QString> youTubeVideoID(const QUrl &url, QStringView host)
{
    const QStringList components = pathComponents(url);
    if (host == service::youTubeShortLinkHost)
        return components.isEmpty() ? std::nullopt : std::optional(components.first());
    if (url.path() == u"/watch")
        return queryValue(url, QStringLiteral("v"));
    return componentAfter(
        components, {QStringLiteral("shorts"), QStringLiteral("embed"), QStringLiteral("live")});
}

} // namespace

std::optional<YouTubeContent> YouTubeContent::fromUrl(const QUrl &url)
{
    const QString host = url.host().toLower();
    if (host != service::youTubeShortLinkHost && !isDomainOrSubdomain(host, service::youTubeDomain)
        && !isDomainOrSubdomain(host, service::youTubeNoCookieDomain))
        return std::nullopt;
    return fromIDs(youTubeVideoID(url, host), queryValue(url, QStringLiteral("list")));
}

std::optional<YouTubeContent> YouTubeContent::fromIDs(const std::optional<QString> &videoID,
                                                      const std::optional<QString> &playlistID)
{
    YouTubeContent content{trimmedOrAbsent(videoID), trimmedOrAbsent(playlistID)};
    if (!content.videoID && !content.playlistID)
        return std::nullopt;
    return content;
}

QString YouTubeContent::id() const
{
    return videoID.value_or(QString()) + u'|' + playlistID.value_or(QString());
}

std::optional<OKVideoContent> OKVideoContent::fromUrl(const QUrl &url)
{
    if (!isDomainOrSubdomain(url.host().toLower(), service::okDomain))
        return std::nullopt;
    const auto videoID = trimmedOrAbsent(componentAfter(
        pathComponents(url),
        {QStringLiteral("video"), QStringLiteral("videoembed"), QStringLiteral("live")}));
    if (!videoID)
        return std::nullopt;
    const QList<uint> codePoints = videoID->toUcs4();
    const bool allowed = std::ranges::all_of(codePoints, [](uint c) {
        return QChar::isLetterOrNumber(c) || QChar::isMark(c) || c == u'-' || c == u'_';
    });
    if (!allowed)
        return std::nullopt;
    return OKVideoContent{*videoID};
}

QUrl OKVideoContent::embedURL(const WebServices &services) const
{
    QUrl url = services.okVideo;
    url.setPath(u"/videoembed/" + videoID);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("autoplay"), QStringLiteral("1"));
    query.addQueryItem(QStringLiteral("nochat"), QStringLiteral("1"));
    url.setQuery(query);
    return url;
}

const QStringList &supportedMediaExtensions()
{
    static const QStringList extensions =
        QStringLiteral("mp4 mov mkv avi webm m4v mpeg mpg ts m2ts 3gp 3g2 mp3 m4a aac wav aiff caf")
            .split(u' ');
    return extensions;
}

const QStringList &supportedMimeTypes()
{
    static const QStringList types =
        QStringLiteral("video/mp4 video/quicktime video/x-matroska video/x-msvideo video/vnd.avi "
                       "video/webm video/x-m4v video/mpeg video/mp2t video/3gpp video/3gpp2 "
                       "audio/mpeg audio/mp4 audio/x-m4a audio/aac audio/x-wav audio/vnd.wave "
                       "audio/x-aiff audio/x-caf audio/x-mpegurl application/vnd.apple.mpegurl")
            .split(u' ');
    return types;
}

QString normalizedRemoteAddress(const QString &text)
{
    QString address = text.trimmed();
    if (const qsizetype open = address.indexOf(u"]("); open >= 0 && address.endsWith(u')'))
        address = address.sliced(open + 2).chopped(1);
    if (address.size() >= 3 && address.startsWith(u'<') && address.endsWith(u'>'))
        address = address.sliced(1).chopped(1);
    return address.trimmed();
}

std::optional<QUrl> remoteUrl(const QString &normalizedAddress)
{
    QUrl url(normalizedAddress, QUrl::TolerantMode);
    // QUrl lower-cases the scheme.
    const bool isHttp = url.scheme() == u"http" || url.scheme() == u"https";
    if (!url.isValid() || !isHttp || url.host().isEmpty())
        return std::nullopt;
    return url;
}

bool isIPTVPlaylistURL(const QUrl &url)
{
    if (pathExtension(url) == u"m3u")
        return true;
    static constexpr std::array<QStringView, 3> marks{u"type=m3u", u"format=m3u", u"output=m3u"};
    const auto items = QUrlQuery(url).queryItems(QUrl::FullyDecoded);
    return std::ranges::any_of(items, [](const auto &item) {
        const QString text = (item.first + u'=' + item.second).toLower();
        return std::ranges::any_of(marks, [&](QStringView mark) { return text.contains(mark); });
    });
}

} // namespace lumaro
