#pragma once

#include <QByteArrayView>

#include <optional>

namespace lumaro {

/// Walks a UTF-8 text line by line. A line ends at U+000A to U+000D, U+0085, U+2028 or U+2029.
class PlaylistLines
{
public:
    /// What `text` views outlives the walk.
    explicit PlaylistLines(QByteArrayView text)
        : m_rest(text)
    {
    }

    /// The next line without its end, empty ones too; nothing when there is none left.
    std::optional<QByteArrayView> next();

private:
    QByteArrayView m_rest;
    bool m_atEnd = false;
};

/// Without the white space and newline characters at both ends, those of Unicode included.
QByteArrayView trimmedLine(QByteArrayView line);

} // namespace lumaro
