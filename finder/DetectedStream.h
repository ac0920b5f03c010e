#pragma once

#include <QDateTime>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <optional>

namespace lumaro {

/// An HLS playlist that a web page loaded.
struct DetectedStream
{
    /// What a playlist's text tells of it (RFC 8216, section 4).
    enum class StreamType {
        Master, ///< lists renditions
        Variant, ///< lists segments
        Unknown,
    };

    /// "master", "variant" or "unknown".
    static QString rawValue(StreamType type);
    /// Empty for any other text.
    static std::optional<StreamType> typeFromRawValue(QStringView text);

    QUuid id;
    /// As first seen; later sightings may differ in their fragment.
    QUrl url;
    StreamType type = StreamType::Unknown;
    /// When it was last seen.
    QDateTime detectedAt;
    std::optional<QString> displayName;
    std::optional<QString> resolution;
    /// Bits per second.
    std::optional<int> bandwidth;
    std::optional<QString> codecs;
    /// Frames per second.
    std::optional<double> frameRate;

    bool operator==(const DetectedStream &) const = default;
};

} // namespace lumaro

// Lists of them move by moving bytes.
Q_DECLARE_TYPEINFO(lumaro::DetectedStream, Q_RELOCATABLE_TYPE);
