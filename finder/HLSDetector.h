#pragma once

#include "finder/DetectedStream.h"

namespace lumaro {

/// Tells HLS playlists from everything else a page loads.
class HLSDetector
{
public:
    struct Result
    {
        bool isHLS = false;
        /// Unknown unless it is HLS and its text is there to tell.
        DetectedStream::StreamType type = DetectedStream::StreamType::Unknown;

        bool operator==(const Result &) const = default;
    };

    /// `contentType` is the server's media type, with or without parameters. An address, a media
    /// type or a text that looks like a playlist is enough. Any thread.
    static Result inspect(const QUrl &url, const std::optional<QString> &contentType,
                          const std::optional<QString> &playlistText);
};

} // namespace lumaro
