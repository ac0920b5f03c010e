#include "playlist/JsonReader.h"

#include "platform/Utf8Text.h"

#include <QString>

#include <algorithm>
#include <cstring>

namespace lumaro {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

int hexDigit(char c)
{
    if (isDigit(c))
        return c - '0';
    const char lower = char(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

namespace {

/// The first byte that means something in a string, or must not be there.
const char *findSpecial(const char *at, const char *end)
{
    // Eight bytes at a time: subtracting borrows into a byte's highest bit where the byte was too
    // small, which a zero is after the exclusive or.
    constexpr quint64 ones = 0x0101010101010101;
    constexpr quint64 highBits = ones << 7;
    const auto someLess = [](quint64 word, quint64 than) {
        return (word - ones * than) & ~word & highBits;
    };
    while (end - at >= 8) {
        quint64 word = 0;
        std::memcpy(&word, at, sizeof word);
        if (someLess(word, 0x20) | someLess(word ^ ones * '"', 1) | someLess(word ^ ones * '\\', 1))
            break;
        at += 8;
    }
    return std::find_if(at, end, [](char c) { return uchar(c) < 0x20 || c == '"' || c == '\\'; });
}

/// The four digits at `at`.
char16_t codeUnit(const char *at)
{
    int unit = 0;
    for (int i = 0; i < 4; ++i)
        unit = unit << 4 | hexDigit(at[i]);
    return char16_t(unit);
}

char16_t simpleEscape(char c)
{
    switch (c) {
    case 'b':
        return u'\b';
    case 'f':
        return u'\f';
    case 'n':
        return u'\n';
    case 'r':
        return u'\r';
    case 't':
        return u'\t';
    default:
        return char16_t(c);
    }
}

} // namespace

QByteArray JsonReader::String::text() const
{
    if (!hasEscapes)
        return raw.toByteArray();
    QString text;
    const char *at = raw.begin();
    while (at != raw.end()) {
        const char *const escape = std::find(at, raw.end(), '\\');
        text += text::toString({at, escape});
        if (escape == raw.end())
            break;
        const bool isUnit = escape[1] == 'u';
        text += QChar(isUnit ? codeUnit(escape + 2) : simpleEscape(escape[1]));
        at = escape + (isUnit ? 6 : 2);
    }
    return text.toUtf8();
}

JsonReader::JsonReader(QByteArrayView json)
    : m_at(json.begin())
    , m_end(json.end())
    , m_failed(!QUtf8StringView(json.data(), json.size()).isValidUtf8())
{
}

bool JsonReader::fail()
{
    m_failed = true;
    m_at = m_end;
    return false;
}

void JsonReader::skipSpace()
{
    while (m_at != m_end && (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t'))
        ++m_at;
}

bool JsonReader::take(char expected)
{
    skipSpace();
    if (m_failed || m_at == m_end || *m_at != expected)
        return false;
    ++m_at;
    return true;
}

bool JsonReader::takeWord(QByteArrayView word)
{
    skipSpace();
    if (m_failed || !QByteArrayView(m_at, m_end).startsWith(word))
        return false;
    m_at += word.size();
    return true;
}

bool JsonReader::enter(char bracket)
{
    if (m_depth == maximumDepth || !take(bracket))
        return fail();
    ++m_depth;
    m_isFirst = true;
    return true;
}

bool JsonReader::next(char bracket)
{
    const bool isFirst = std::exchange(m_isFirst, false);
    if (take(bracket)) {
        --m_depth;
        return false;
    }
    return !m_failed && (isFirst || take(',') || fail());
}

bool JsonReader::enterArray()
{
    return enter('[');
}

bool JsonReader::nextElement()
{
    return next(']');
}

bool JsonReader::enterObject()
{
    return enter('{');
}

bool JsonReader::nextKey(String &key)
{
    return next('}') && readString(key) && (take(':') || fail());
}

bool JsonReader::readString(String &string)
{
    return (take('"') && skipString(string)) || fail();
}

bool JsonReader::skipString(String &string)
{
    const char *const begin = m_at;
    string.hasEscapes = false;
    while ((m_at = findSpecial(m_at, m_end)) != m_end && *m_at == '\\') {
        ++m_at;
        string.hasEscapes = true;
        if (!skipEscape())
            return false;
    }
    if (m_at == m_end || *m_at != '"')
        return false;
    string.raw = QByteArrayView(begin, m_at++);
    return true;
}

/// What follows the backslash.
bool JsonReader::skipEscape()
{
    if (m_at == m_end)
        return false;
    const char kind = *m_at++;
    if (kind != 'u')
        return QByteArrayView("\"\\/bfnrt").contains(kind);
    if (m_end - m_at < 4 || std::any_of(m_at, m_at + 4, [](char c) { return hexDigit(c) < 0; }))
        return false;
    m_at += 4;
    return true;
}

bool JsonReader::skipNull()
{
    return takeWord("null");
}

bool JsonReader::skipValue()
{
    skipSpace();
    if (m_at == m_end)
        return fail();
    String string;
    switch (*m_at) {
    case '"':
        return readString(string);
    case '[':
    case '{':
        return skipContainer();
    case 't':
        return takeWord("true") || fail();
    case 'f':
        return takeWord("false") || fail();
    case 'n':
        return takeWord("null") || fail();
    default:
        return skipNumber() || fail();
    }
}

bool JsonReader::skipContainer()
{
    // The depth bounds the recursion.
    String key;
    if (*m_at == '[') {
        enterArray();
        while (nextElement() && skipValue()) { }
    } else {
        enterObject();
        while (nextKey(key) && skipValue()) { }
    }
    return !m_failed;
}

bool JsonReader::skipNumber()
{
    if (*m_at == '-')
        ++m_at;
    if (m_at != m_end && *m_at == '0')
        ++m_at;
    else if (!skipDigits())
        return false;
    if (m_at != m_end && *m_at == '.') {
        ++m_at;
        if (!skipDigits())
            return false;
    }
    if (m_at == m_end || (*m_at | 0x20) != 'e')
        return true;
    ++m_at;
    if (m_at != m_end && (*m_at == '+' || *m_at == '-'))
        ++m_at;
    return skipDigits();
}

/// One at least.
bool JsonReader::skipDigits()
{
    const char *const begin = m_at;
    m_at = std::find_if_not(m_at, m_end, isDigit);
    return m_at != begin;
}

bool JsonReader::atEnd()
{
    skipSpace();
    return !m_failed && m_at == m_end;
}

} // namespace lumaro
