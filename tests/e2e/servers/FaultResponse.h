#pragma once

#include <QByteArray>
#include <QList>

#include <chrono>
#include <optional>
#include <utility>

namespace lumaro {

/// `head`, then `part` so many times, then `tail`: bodies of any size that are never held in
/// memory.
struct RepeatedBody
{
    static constexpr qint64 endless = -1;

    QByteArray head;
    QByteArray part;
    qint64 times = 0;
    QByteArray tail;

    /// In bytes; `endless` when it has no end.
    qint64 size() const;
    /// At most `count` bytes from `offset` on, at least one unless that is the end.
    QByteArray read(qint64 offset, qint64 count) const;

    bool operator==(const RepeatedBody &) const = default;
};

/// What a FaultServer answers, and what goes wrong while it does.
struct FaultResponse
{
    using Header = std::pair<QByteArray, QByteArray>;

    int status = 200;
    QByteArray contentType = QByteArrayLiteral("application/octet-stream");
    QList<Header> headers;
    RepeatedBody body;

    enum class Framing {
        ContentLength,
        UntilClose, ///< neither length nor chunks: the end of the connection ends the body
        Chunked,
    };
    Framing framing = Framing::ContentLength;
    /// Announced as Content-Length in place of the body's; for an endless body there is none else.
    std::optional<qint64> claimedLength;

    /// Before the status line.
    std::chrono::milliseconds delay{};
    /// With `interval` > 0, so many bytes of the body are sent every interval.
    qint64 dripSize = 1;
    std::chrono::milliseconds dripInterval{};
    /// After so many bytes of the body nothing more comes until the path is released.
    std::optional<qint64> stallAfter;
    /// After so many bytes of the body the connection is reset (TCP RST).
    std::optional<qint64> resetAfter;
    /// After so many bytes of the body the connection is closed in the ordinary way.
    std::optional<qint64> closeAfter;

    /// A response without faults.
    static FaultResponse of(const QByteArray &contentType, const QByteArray &body);

    /// The M3U beginning "#EXTM3U" whose only other line is at least `size` bytes of a channel
    /// name; RepeatedBody::endless for a line that never ends.
    static FaultResponse longLine(qint64 size);

    /// A body with Content-Encoding gzip that inflates to line feeds without end, a thousand times
    /// its own size.
    static FaultResponse gzipBomb();
};

} // namespace lumaro
