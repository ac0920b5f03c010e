#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

/// The text rules of playlists, on UTF-8 bytes: lines, white space, code points.
namespace lumaro::text {

/// `bytes` as UTF-8 without a byte-order mark: as they are when they are UTF-8, otherwise read as
/// ISO Latin-1, which any bytes are.
QByteArray decodeUtf8OrLatin1(QByteArray bytes);

/// All of `text`: a U+FEFF at its beginning is a character like others, where Qt's own reading
/// takes it for a byte-order mark and drops it.
QString toString(QUtf8StringView text);

/// Without the white space and newline characters at both ends, those of Unicode included.
QByteArrayView trimmed(QByteArrayView text);

/// Without the spaces and tabs at both ends.
QByteArrayView trimmedBlanks(QByteArrayView text);

/// `code` in upper case if that has exactly two characters as a reader counts them.
std::optional<QByteArray> twoCharacterCode(QByteArrayView code);

/// Walks a text line by line. A line ends at U+000A to U+000D, U+0085, U+2028 or U+2029.
class Lines
{
public:
    /// `text` outlives the walk.
    explicit Lines(QByteArrayView text);

    /// The next line without its end; empty when there is none left.
    std::optional<QByteArrayView> next();

private:
    QByteArrayView nextLineFeedLine();

    QByteArrayView m_rest;
    /// What is left of a line-feed line that holds other line ends.
    QByteArrayView m_pieces;
    bool m_hasPieces = false;
    /// Only line feeds, or carriage returns right before them, end lines in this text.
    bool m_onlyLineFeeds;
    bool m_atEnd = false;
};

} // namespace lumaro::text
