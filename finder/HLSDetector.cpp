#include "finder/HLSDetector.h"

#include <algorithm>
#include <array>

namespace lumaro {

namespace {

using StreamType = DetectedStream::StreamType;

/// ".m3u8" at the end or before a query or a fragment.
bool isPlaylistAddress(const QUrl &url)
{
    constexpr QLatin1StringView extension(".m3u8");
    const QString address = url.toString(QUrl::FullyEncoded);
    qsizetype found = address.indexOf(extension, 0, Qt::CaseInsensitive);
    while (found >= 0) {
        const qsizetype end = found + extension.size();
        if (end == address.size() || address[end] == u'?' || address[end] == u'#')
            return true;
        found = address.indexOf(extension, end, Qt::CaseInsensitive);
    }
    return false;
}

bool isPlaylistContentType(QStringView contentType)
{
    constexpr std::array types{
        QLatin1StringView("application/vnd.apple.mpegurl"),
        QLatin1StringView("application/x-mpegurl"),
        QLatin1StringView("audio/mpegurl"),
        QLatin1StringView("audio/x-mpegurl"),
    };
    return std::ranges::any_of(types, [contentType](QLatin1StringView type) {
        return contentType.contains(type, Qt::CaseInsensitive);
    });
}

StreamType typeOf(QStringView text)
{
    if (text.contains(u"#EXT-X-STREAM-INF") || text.contains(u"#EXT-X-MEDIA:"))
        return StreamType::Master;
    if (text.contains(u"#EXTINF:") || text.contains(u"#EXT-X-TARGETDURATION:"))
        return StreamType::Variant;
    return StreamType::Unknown;
}

} // namespace

HLSDetector::Result HLSDetector::inspect(const QUrl &url, const std::optional<QString> &contentType,
                                         const std::optional<QString> &playlistText)
{
    const QStringView text = playlistText ? QStringView(*playlistText).trimmed() : QStringView();
    const bool isHLS = isPlaylistAddress(url)
        || (contentType && isPlaylistContentType(*contentType)) || text.startsWith(u"#EXTM3U");
    if (!isHLS)
        return {};
    return {true, typeOf(text)};
}

} // namespace lumaro
