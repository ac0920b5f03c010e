#pragma once

#include "playlist/PlaylistEntries.h"

#include <expected>

namespace lumaro {

/// Why a playlist cannot be used.
enum class PlaylistError {
    invalidEncoding, ///< the bytes are no text
    empty, ///< the text names no address
};

/// An English sentence for the user.
QString description(PlaylistError error);

/// Reads M3U and extended-M3U playlists, the de-facto format of IPTV channel lists. Pure
/// functions; any thread.
class PlaylistParser
{
public:
    /// Addresses that had to be resolved, and the names made of them, take memory beyond the text.
    /// Once they take this much, in bytes, further lines of that kind are left out.
    static constexpr qsizetype maximumAddedSize = 256 << 20;

    /// The entries of `text`, which is valid UTF-8 and was found at `baseURL`. Shares the text.
    static PlaylistEntries parse(const QByteArray &text, const QUrl &baseURL);

    /// The playlist's bytes as UTF-8; ISO Latin-1 is converted.
    static std::expected<QByteArray, PlaylistError> decode(QByteArray bytes);

    /// Decodes and parses; a playlist without entries is an error.
    static std::expected<PlaylistEntries, PlaylistError> read(QByteArray bytes,
                                                              const QUrl &baseURL);
};

} // namespace lumaro
