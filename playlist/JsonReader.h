#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace lumaro {

/// What `c` is worth as a hexadecimal digit in either case; -1 for no digit.
int hexDigit(char c);

/// Walks through a JSON text (RFC 8259) from its beginning, value by value, without copying it.
/// What is wrong stops the walk for good: failed() is true then and every other call false.
class JsonReader
{
public:
    /// Arrays and objects within each other; deeper ones are refused.
    static constexpr int maximumDepth = 64;

    struct String
    {
        /// What stands between the quotes.
        QByteArrayView raw;
        bool hasEscapes = false;

        /// In UTF-8. Half a surrogate pair becomes a question mark.
        QByteArray text() const;
    };

    /// `json` outlives the reader.
    explicit JsonReader(QByteArrayView json);

    bool failed() const { return m_failed; }

    /// Enters the array that comes next; nextElement() then tells whether another value follows.
    bool enterArray();
    bool nextElement();
    /// Enters the object that comes next; nextKey() then tells whether another value follows, and
    /// its key.
    bool enterObject();
    bool nextKey(String &key);

    /// Reads the string that comes next.
    bool readString(String &string);
    /// Passes over the null that comes next; false, and nothing happens, when it is another value.
    bool skipNull();
    /// Passes over the value that comes next, whatever it is.
    bool skipValue();
    /// True when nothing but white space is left.
    bool atEnd();

private:
    bool fail();
    void skipSpace();
    bool take(char expected);
    bool takeWord(QByteArrayView word);
    bool enter(char bracket);
    bool next(char bracket);
    bool skipString(String &string);
    bool skipEscape();
    bool skipNumber();
    bool skipDigits();
    bool skipContainer();

    const char *m_at;
    const char *m_end;
    int m_depth = 0;
    /// The array or object has just been entered, so that no comma comes before its first value.
    bool m_isFirst = false;
    bool m_failed = false;
};

} // namespace lumaro
