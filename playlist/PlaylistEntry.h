#pragma once

#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace lumaro {

/// One playable item or channel.
struct PlaylistEntry
{
    QUuid id;
    QString name;
    /// The address to play.
    QUrl url;
    std::optional<QUrl> logoURL;
    /// The channel's category.
    std::optional<QString> groupTitle;
    /// Two upper-case letters where it was read from a playlist.
    std::optional<QString> countryCode;

    bool operator==(const PlaylistEntry &) const = default;
};

size_t qHash(const PlaylistEntry &entry, size_t seed = 0) noexcept;

} // namespace lumaro
