#include "download/StreamFetcher.h"

#include <algorithm>
#include <functional>
#include <memory>

namespace lumaro {

namespace {

/// What web servers expect of a browser; some refuse anything else.
constexpr char userAgent[] = "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) "
                             "AppleWebKit/605.1.15 Safari/605.1.15";

HttpRequest requestFor(const QUrl &url)
{
    HttpRequest request;
    request.url = url;
    request.patience = StreamFetcher::patience;
    request.userAgent = userAgent;
    return request;
}

/// Empty when the server gave what was asked for.
std::optional<DownloadFailure> failureOf(const std::expected<HttpResponse, HttpError> &response)
{
    // What no HTTP server was asked for, none has granted.
    if (!response && response.error().kind == HttpError::Kind::UnsupportedAddress)
        return DownloadError::serverRejected;
    if (!response)
        return response.error();
    if (response->status < 200 || response->status > 299)
        return DownloadError::serverRejected;
    return std::nullopt;
}

bool isMaster(const QByteArray &text)
{
    return text.contains("#EXT-X-STREAM-INF");
}

/// The first of the variants with the highest bandwidth.
DownloadResult<QUrl> bestVariant(const QByteArray &text, const QUrl &url,
                                 const std::stop_token &stop)
{
    const QList<Variant> variants = parseVariants(text, url, stop);
    const auto best = std::ranges::max_element(variants, {}, &Variant::bandwidth);
    if (best == variants.end())
        return std::unexpected(DownloadError::invalidPlaylist);
    return best->url;
}

/// Runs `read` on another thread. Nobody has to wait for its end when `stop` is requested.
template <typename T>
Task<DownloadResult<T>> inBackground(Scheduler &scheduler, std::function<DownloadResult<T>()> read,
                                     std::stop_token stop)
{
    const auto reading = scheduler.inBackground(std::move(read), std::move(stop));
    std::optional<DownloadResult<T>> result = co_await reading;
    if (!result)
        co_return std::unexpected(HttpError{HttpError::Kind::Cancelled});
    co_return *std::move(result);
}

} // namespace

Task<DownloadResult<void>> StreamFetcher::fetchData(QUrl url, HttpBodySink sink,
                                                    std::stop_token stop)
{
    const HttpRequest request = requestFor(url);
    const auto response = co_await m_http.stream(request, std::move(sink), stop);
    if (const auto failure = failureOf(response))
        co_return std::unexpected(*failure);
    co_return {};
}

Task<DownloadResult<PlaylistText>> StreamFetcher::fetchText(QUrl url, std::stop_token stop)
{
    constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";
    HttpRequest request = requestFor(url);
    request.maximumBodySize = maximumPlaylistSize;
    // Streamed, so that a refusal need not be read to its end.
    const auto body = std::make_shared<QByteArray>();
    const HttpBodySink collect = [body](QByteArrayView bytes) {
        body->append(bytes);
        return true;
    };
    const auto response = co_await m_http.stream(request, collect, stop);
    if (const auto failure = failureOf(response))
        co_return std::unexpected(*failure);
    QByteArray text = std::move(*body);
    if (!text.isValidUtf8())
        co_return std::unexpected(DownloadError::invalidPlaylist);
    if (text.startsWith(byteOrderMark))
        text.remove(0, byteOrderMark.size());
    co_return PlaylistText{text};
}

Task<DownloadResult<MediaPlaylist>> StreamFetcher::fetchMediaPlaylist(QUrl url,
                                                                      std::stop_token stop)
{
    const DownloadResult<PlaylistText> text = co_await fetchText(url, stop);
    if (!text)
        co_return std::unexpected(text.error());
    co_return co_await parse(*text, url, stop);
}

Task<DownloadResult<MediaPlaylist>> StreamFetcher::resolveMediaPlaylist(QUrl url,
                                                                        std::stop_token stop)
{
    const DownloadResult<PlaylistText> text = co_await fetchText(url, stop);
    if (!text)
        co_return std::unexpected(text.error());
    if (!isMaster(text->utf8))
        co_return co_await parse(*text, url, stop);

    const std::function<DownloadResult<QUrl>()> choose = [text, url, stop] {
        return bestVariant(text->utf8, url, stop);
    };
    const DownloadResult<QUrl> variant = co_await inBackground(m_scheduler, choose, stop);
    if (!variant)
        co_return std::unexpected(variant.error());
    co_return co_await fetchMediaPlaylist(*variant, stop);
}

Task<DownloadResult<MediaPlaylist>> StreamFetcher::parse(const PlaylistText &text, const QUrl &url,
                                                         std::stop_token stop)
{
    const std::function<DownloadResult<MediaPlaylist>()> read = [text, url, stop] {
        return parseMediaPlaylist(text.utf8, url, stop);
    };
    return inBackground(m_scheduler, read, std::move(stop));
}

} // namespace lumaro
