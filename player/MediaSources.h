#pragma once

#include "player/WebServices.h"
#include "playlist/UrlPath.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace lumaro {

/// A reference into YouTube: a video, a playlist, or a video inside a playlist.
struct YouTubeContent
{
    std::optional<QString> videoID;
    std::optional<QString> playlistID;

    /// Empty when `url` does not lead to a video or a playlist there.
    static std::optional<YouTubeContent> fromUrl(const QUrl &url);
    /// Empty when neither identifier is present and non-empty.
    static std::optional<YouTubeContent> fromIDs(const std::optional<QString> &videoID,
                                                 const std::optional<QString> &playlistID);

    /// "video|playlist"; tells whether a shown player must load anew.
    QString id() const;

    bool operator==(const YouTubeContent &) const = default;
};

/// A reference to an OK.ru video.
struct OKVideoContent
{
    QString videoID;

    /// Empty when `url` does not lead to a video there.
    static std::optional<OKVideoContent> fromUrl(const QUrl &url);

    QString id() const { return videoID; }
    /// The page of the service's own player, starting by itself, without its chat.
    QUrl embedURL(const WebServices &services = {}) const;

    bool operator==(const OKVideoContent &) const = default;
};

/// What was opened last, kept so that it can be played again.
struct MediaSource
{
    QUrl url;
    QString title;
    bool isLiveStream = false;
    bool operator==(const MediaSource &) const = default;
};

struct YouTubeSource
{
    YouTubeContent content;
    QString title;
    bool operator==(const YouTubeSource &) const = default;
};

struct OKVideoSource
{
    OKVideoContent content;
    QString title;
    bool operator==(const OKVideoSource &) const = default;
};

using LastPlayableSource = std::variant<MediaSource, YouTubeSource, OKVideoSource>;

/// File-name extensions of the local files that can be opened, in the order of the open panel.
const QStringList &supportedMediaExtensions();

/// The MIME types of those and of playlists, as desktops name them.
const QStringList &supportedMimeTypes();

/// Cleans a typed or pasted address: trims it, and unwraps a Markdown link and angle brackets.
/// Adds no scheme and encodes nothing.
QString normalizedRemoteAddress(const QString &text);

/// The URL of a normalised address if it is an http or https address with a host.
std::optional<QUrl> remoteUrl(const QString &normalizedAddress);

/// True when `url` names an M3U playlist of channels rather than a stream.
bool isIPTVPlaylistURL(const QUrl &url);

} // namespace lumaro
