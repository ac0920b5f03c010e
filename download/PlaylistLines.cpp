#include "download/PlaylistLines.h"

#include <array>

namespace lumaro {

namespace {

/// The length of the line end at `position`; 0 for none.
qsizetype lineEndLength(QByteArrayView text, qsizetype position)
{
    const char c = text[position];
    if (c >= '\n' && c <= '\r')
        return 1;
    if (c == '\xC2')
        return text.sliced(position).startsWith("\xC2\x85") ? 2 : 0;
    if (c == '\xE2') {
        const QByteArrayView rest = text.sliced(position);
        return rest.startsWith("\xE2\x80\xA8") || rest.startsWith("\xE2\x80\xA9") ? 3 : 0;
    }
    return 0;
}

/// White space beyond ASCII, in UTF-8.
constexpr std::array<QByteArrayView, 19> wideSpaces = {
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81",
    "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86",
    "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8",
    "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"};

/// `line` without one wide space at one of its ends; the same when there is none.
QByteArrayView withoutWideSpace(QByteArrayView line)
{
    for (const QByteArrayView space : wideSpaces) {
        if (line.startsWith(space))
            return line.sliced(space.size());
        if (line.endsWith(space))
            return line.chopped(space.size());
    }
    return line;
}

bool isAscii(char c)
{
    return uchar(c) < 0x80;
}

} // namespace

std::optional<QByteArrayView> PlaylistLines::next()
{
    if (m_atEnd)
        return std::nullopt;
    for (qsizetype i = 0; i < m_rest.size(); ++i) {
        if (const qsizetype length = lineEndLength(m_rest, i)) {
            const QByteArrayView line = m_rest.first(i);
            m_rest = m_rest.sliced(i + length);
            return line;
        }
    }
    m_atEnd = true;
    return m_rest;
}

QByteArrayView trimmedLine(QByteArrayView line)
{
    for (;;) {
        line = line.trimmed();
        if (line.isEmpty() || (isAscii(line.front()) && isAscii(line.back())))
            return line;
        const QByteArrayView shorter = withoutWideSpace(line);
        if (shorter.size() == line.size())
            return line;
        line = shorter;
    }
}

} // namespace lumaro
