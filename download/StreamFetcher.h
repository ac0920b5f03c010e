#pragma once

#include "download/MediaPlaylist.h"
#include "platform/Scheduler.h"

namespace lumaro {

/// The text of a playlist. GCC 12 cannot await an expected QByteArray as such.
struct PlaylistText
{
    QByteArray utf8;
};

/// Fetches what a stream is made of. Each operation ends as cancelled as soon as its token is
/// stopped. Main thread.
class StreamFetcher
{
public:
    /// The longest playlist that is read, in bytes.
    static constexpr qint64 maximumPlaylistSize = 64 * 1024 * 1024;
    static constexpr std::chrono::seconds patience{60};

    /// Both outlive the fetcher.
    StreamFetcher(HttpClient &http, Scheduler &scheduler)
        : m_http(http)
        , m_scheduler(scheduler)
    {
    }

    /// Gives the body to `sink` as it arrives; a fetch that fails may have given a part of it.
    Task<DownloadResult<void>> fetchData(QUrl url, HttpBodySink sink, std::stop_token stop);
    /// The whole body, which must be UTF-8, without a byte-order mark.
    Task<DownloadResult<PlaylistText>> fetchText(QUrl url, std::stop_token stop);
    /// Reads the media playlist at `url`.
    Task<DownloadResult<MediaPlaylist>> fetchMediaPlaylist(QUrl url, std::stop_token stop);
    /// Reads the media playlist at `url`, or the one of the highest bandwidth that the master
    /// playlist there names.
    Task<DownloadResult<MediaPlaylist>> resolveMediaPlaylist(QUrl url, std::stop_token stop);

private:
    Task<DownloadResult<MediaPlaylist>> parse(const PlaylistText &text, const QUrl &url,
                                              std::stop_token stop);

    HttpClient &m_http;
    Scheduler &m_scheduler;
};

} // namespace lumaro
