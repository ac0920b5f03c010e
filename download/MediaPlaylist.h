#pragma once

#include "download/DownloadError.h"

#include <QList>
#include <QUrl>

#include <stop_token>

namespace lumaro {

/// The segments of a media playlist, in its order. They are kept as text and resolved one by one:
/// a hundred thousand of them as URLs would take many times the room. Copies share the text.
class SegmentList
{
public:
    SegmentList() = default;
    explicit SegmentList(QUrl baseURL)
        : m_baseURL(std::move(baseURL))
    {
    }

    /// Adds `address`, absolute or relative to the playlist, unless it is no address.
    void append(QByteArrayView address);

    qsizetype size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }

    /// Goes over the absolute addresses from the first to the last.
    class Reader
    {
    public:
        explicit Reader(const SegmentList &list)
            : m_list(list)
        {
        }

        /// Empty after the last.
        std::optional<QUrl> next();
        /// In the text, in bytes.
        qsizetype position() const { return m_position; }

    private:
        const SegmentList &m_list;
        qsizetype m_position = 0;
    };

    bool operator==(const SegmentList &) const = default;

private:
    QUrl m_baseURL;
    /// Each ends with a line feed.
    QByteArray m_addresses;
    qsizetype m_size = 0;
};

/// A media playlist as far as a download needs it (RFC 8216, section 4.3.3).
struct MediaPlaylist
{
    QUrl url;
    SegmentList segments;
    /// The initialisation segment; empty for none.
    QUrl mapURL;
    /// More segments may appear later.
    bool isLive = false;
    /// Seconds.
    double targetDuration = 4;

    bool operator==(const MediaPlaylist &) const = default;
};

/// One rendition of a master playlist (RFC 8216, section 4.3.4.2).
struct Variant
{
    QUrl url;
    /// Bits a second; 0 when the playlist does not say.
    qint64 bandwidth = 0;

    bool operator==(const Variant &) const = default;
};

/// The number behind the first `name` and "=" in `line`, wherever they stand.
std::optional<qint64> integerAttribute(QStringView name, QStringView line);

/// The variants of a master playlist in its order, at most the first ten thousand. The text is
/// UTF-8, as in the next function. Both are for any thread, and end early when `stop` is requested.
QList<Variant> parseVariants(const QByteArray &text, const QUrl &baseURL,
                             const std::stop_token &stop = {});

/// Three weeks of two-second segments.
constexpr qsizetype maximumSegments = 1'000'000;

/// Reads a media playlist that came from `url`, or says why it cannot be saved: too large with more
/// than maximumSegments.
DownloadResult<MediaPlaylist> parseMediaPlaylist(const QByteArray &text, const QUrl &url,
                                                 const std::stop_token &stop = {});

} // namespace lumaro
