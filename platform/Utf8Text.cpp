#include "platform/Utf8Text.h"

#include <QStringDecoder>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cstring>

namespace lumaro::text {

namespace {

constexpr QByteArrayView byteOrderMark = "\xEF\xBB\xBF";
constexpr QByteArrayView nextLine = "\xC2\x85";
constexpr QByteArrayView lineSeparator = "\xE2\x80\xA8";
constexpr QByteArrayView paragraphSeparator = "\xE2\x80\xA9";

const char *find(QByteArrayView text, char byte)
{
    return text.isEmpty()
        ? nullptr
        : static_cast<const char *>(std::memchr(text.data(), byte, size_t(text.size())));
}

/// `part` begins with a byte that is rare in any text, so looking for that byte is quickest.
bool contains(QByteArrayView text, QByteArrayView part)
{
    const char *const end = text.data() + text.size();
    while (const char *found = find(text, part.front())) {
        if (QByteArrayView(found, end).startsWith(part))
            return true;
        text = {found + 1, end};
    }
    return false;
}

bool hasLoneCarriageReturn(QByteArrayView text)
{
    const char *const end = text.data() + text.size();
    while (const char *found = find(text, '\r')) {
        if (found + 1 == end || found[1] != '\n')
            return true;
        text = {found + 2, end};
    }
    return false;
}

/// The length of the line end that `text` begins with; 0 for none.
qsizetype lineEndLength(QByteArrayView text)
{
    const char first = text.front();
    if (uchar(first) < 0x80)
        return first >= '\n' && first <= '\r' ? 1 : 0;
    for (const QByteArrayView end : {nextLine, lineSeparator, paragraphSeparator}) {
        if (text.startsWith(end))
            return end.size();
    }
    return 0;
}

bool isAsciiSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// `codePoint` takes more than one byte.
bool isUnicodeSpace(QByteArrayView codePoint)
{
    // All of it lies within three bytes.
    if (codePoint.size() > 3)
        return false;
    char32_t value = uchar(codePoint.front()) & (codePoint.size() == 2 ? 0x1f : 0x0f);
    for (const char c : codePoint.sliced(1))
        value = value << 6 | (uchar(c) & 0x3f);
    return QChar::isSpace(value);
}

bool isContinuation(char c)
{
    return (uchar(c) & 0xc0) == 0x80;
}

qsizetype firstCodePointLength(QByteArrayView text)
{
    qsizetype length = 1;
    while (length < text.size() && length < 4 && isContinuation(text[length]))
        ++length;
    return length;
}

qsizetype lastCodePointLength(QByteArrayView text)
{
    qsizetype length = 1;
    while (length < text.size() && length < 4 && isContinuation(text[text.size() - length]))
        ++length;
    return length;
}

qsizetype leadingSpaceLength(QByteArrayView text)
{
    if (uchar(text.front()) < 0x80)
        return isAsciiSpace(text.front()) ? 1 : 0;
    const qsizetype length = firstCodePointLength(text);
    return isUnicodeSpace(text.first(length)) ? length : 0;
}

qsizetype trailingSpaceLength(QByteArrayView text)
{
    if (uchar(text.back()) < 0x80)
        return isAsciiSpace(text.back()) ? 1 : 0;
    const qsizetype length = lastCodePointLength(text);
    return isUnicodeSpace(text.last(length)) ? length : 0;
}

qsizetype characterCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1)
        ++count;
    return count;
}

bool isAscii(char c)
{
    return uchar(c) < 0x80;
}

QByteArray latin1ToUtf8(QByteArrayView bytes)
{
    const auto ascii = std::ranges::count_if(bytes, isAscii);
    QByteArray utf8(2 * bytes.size() - ascii, Qt::Uninitialized);
    char *out = utf8.data();
    for (const char c : bytes) {
        if (isAscii(c)) {
            *out++ = c;
        } else {
            *out++ = char(0xc0 | uchar(c) >> 6);
            *out++ = char(0x80 | (uchar(c) & 0x3f));
        }
    }
    return utf8;
}

} // namespace

QByteArray decodeUtf8OrLatin1(QByteArray bytes)
{
    // One damaged name must not turn the mark into the first line's text.
    if (bytes.startsWith(byteOrderMark))
        bytes.remove(0, byteOrderMark.size());
    return QUtf8StringView(bytes).isValidUtf8() ? bytes : latin1ToUtf8(bytes);
}

QString toString(QUtf8StringView text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(QByteArrayView(text.data(), text.size()));
}

QByteArrayView trimmed(QByteArrayView text)
{
    while (!text.isEmpty()) {
        const qsizetype space = leadingSpaceLength(text);
        if (space == 0)
            break;
        text = text.sliced(space);
    }
    while (!text.isEmpty()) {
        const qsizetype space = trailingSpaceLength(text);
        if (space == 0)
            break;
        text.chop(space);
    }
    return text;
}

QByteArrayView trimmedBlanks(QByteArrayView text)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

std::optional<QByteArray> twoCharacterCode(QByteArrayView code)
{
    if (std::ranges::all_of(code, isAscii))
        return code.size() == 2 ? std::optional(code.toByteArray().toUpper()) : std::nullopt;
    // Longer than any two characters would reasonably be; counting them would take its time.
    constexpr qsizetype longest = 256;
    if (code.size() > longest)
        return std::nullopt;
    const QString upper = toString(code).toUpper();
    return characterCount(upper) == 2 ? std::optional(upper.toUtf8()) : std::nullopt;
}

Lines::Lines(QByteArrayView text)
    : m_rest(text)
    , m_onlyLineFeeds(!find(text, '\v') && !find(text, '\f') && !contains(text, nextLine)
                      && !contains(text, lineSeparator) && !contains(text, paragraphSeparator)
                      && !hasLoneCarriageReturn(text))
{
}

QByteArrayView Lines::nextLineFeedLine()
{
    const char *const end = m_rest.data() + m_rest.size();
    const char *const found = find(m_rest, '\n');
    const QByteArrayView line(m_rest.data(), found ? found : end);
    m_atEnd = !found;
    m_rest = found ? QByteArrayView(found + 1, end) : QByteArrayView();
    return line;
}

std::optional<QByteArrayView> Lines::next()
{
    if (!m_hasPieces) {
        if (m_atEnd)
            return std::nullopt;
        const QByteArrayView line = nextLineFeedLine();
        if (m_onlyLineFeeds)
            return line;
        m_pieces = line;
        m_hasPieces = true;
    }
    for (qsizetype i = 0; i < m_pieces.size(); ++i) {
        if (const qsizetype length = lineEndLength(m_pieces.sliced(i))) {
            const QByteArrayView piece = m_pieces.first(i);
            m_pieces = m_pieces.sliced(i + length);
            return piece;
        }
    }
    m_hasPieces = false;
    return m_pieces;
}

} // namespace lumaro::text
