#include "download/WrittenSegments.h"

#include <QCryptographicHash>

#include <cstring>

namespace lumaro {

namespace {

/// Half a day of two-second segments.
constexpr qsizetype enough = 20'000;

} // namespace

void WrittenSegments::beginPlaylist()
{
    // The playlist before has left everything it lists among the recent ones.
    if (m_recent.size() >= enough)
        m_older = std::exchange(m_recent, {});
}

bool WrittenSegments::insert(const QUrl &segment)
{
    const Mark mark = markOf(segment);
    const bool wasKnown = m_recent.contains(mark) || m_older.remove(mark);
    m_recent.insert(mark);
    return !wasKnown;
}

WrittenSegments::Mark WrittenSegments::markOf(const QUrl &segment)
{
    const QByteArray hash = QCryptographicHash::hash(segment.toEncoded(), QCryptographicHash::Sha1);
    Mark mark;
    std::memcpy(mark.bits.data(), hash.constData(), sizeof mark.bits);
    return mark;
}

} // namespace lumaro
