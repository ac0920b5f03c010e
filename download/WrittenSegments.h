#pragma once

#include <QSet>
#include <QUrl>

#include <array>

namespace lumaro {

/// Which segments of a stream have been written. Remembers all that the newest playlist lists and,
/// for playlists that jump back, many thousands before them, but not those of days ago: a live
/// stream has no end.
class WrittenSegments
{
public:
    /// A new playlist is gone through from now on.
    void beginPlaylist();

    /// Adds a listed segment; false when it is known already.
    bool insert(const QUrl &segment);

    /// How many are remembered.
    qsizetype size() const { return m_recent.size() + m_older.size(); }

private:
    /// A part of the address's SHA-1, which stands for it in a fraction of its room.
    struct Mark
    {
        std::array<quint64, 2> bits{};

        bool operator==(const Mark &) const = default;
        friend size_t qHash(const Mark &mark, size_t seed) noexcept
        {
            return qHash(mark.bits.front(), seed);
        }
    };

    static Mark markOf(const QUrl &segment);

    QSet<Mark> m_recent;
    QSet<Mark> m_older;
};

} // namespace lumaro
