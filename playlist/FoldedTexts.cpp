#include "playlist/FoldedTexts.h"

#include <cstring>

namespace lumaro {

namespace {

QByteArray folded(const QString &text)
{
    return text.toCaseFolded().toUtf8();
}

quint64 word(const char *bytes)
{
    quint64 value = 0;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

bool hasZeroByte(quint64 value)
{
    constexpr quint64 lowBits = 0x7f7f7f7f7f7f7f7f;
    return ~(((value & lowBits) + lowBits) | value | lowBits) != 0;
}

/// The first place from `start` on where `needle` stands in `text`; -1 for none. Looks at eight
/// places at once for its first and last byte, which beats memmem() several times when short
/// needles are frequent.
qsizetype findFrom(qsizetype start, QByteArrayView text, QByteArrayView needle)
{
    constexpr quint64 everyByte = 0x0101010101010101;
    const quint64 firstBytes = everyByte * uchar(needle.front());
    const quint64 lastBytes = everyByte * uchar(needle.back());
    const qsizetype last = needle.size() - 1;
    const auto isAt = [&](qsizetype place) {
        return text[place] == needle.front() && text.sliced(place).startsWith(needle);
    };
    constexpr qsizetype step = sizeof(quint64);
    for (; start + last + step <= text.size(); start += step) {
        const char *const first = text.data() + start;
        if (!hasZeroByte((word(first) ^ firstBytes) | (word(first + last) ^ lastBytes)))
            continue;
        for (qsizetype place = start; place < start + step; ++place) {
            if (isAt(place))
                return place;
        }
    }
    for (; start + last < text.size(); ++start) {
        if (isAt(start))
            return start;
    }
    return -1;
}

} // namespace

FoldedTexts::FoldedTexts(qsizetype count, const std::function<QString(qsizetype)> &textAt)
{
    QString lines;
    for (qsizetype i = 0; i < count; ++i)
        lines += textAt(i) + u'\n';
    // Folding all texts at once is much quicker than one by one, and keeps the line feeds.
    m_lines = folded(lines);
    m_ends.reserve(size_t(count));
    for (qsizetype i = m_lines.indexOf('\n'); i >= 0; i = m_lines.indexOf('\n', i + 1))
        m_ends.push_back(i);
}

std::vector<quint8> FoldedTexts::containing(const QString &text) const
{
    const QByteArray needle = folded(text);
    if (needle.isEmpty())
        return std::vector<quint8>(m_ends.size(), 1);
    std::vector<quint8> found(m_ends.size(), 0);
    // A line feed in it would find two neighbours.
    if (needle.contains('\n'))
        return found;
    size_t line = 0;
    qsizetype place = findFrom(0, m_lines, needle);
    while (place >= 0) {
        while (m_ends[line] < place)
            ++line;
        found[line] = 1;
        place = findFrom(m_ends[line] + 1, m_lines, needle);
    }
    return found;
}

} // namespace lumaro
