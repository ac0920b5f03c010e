#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace lumaro {

/// Many short texts, searched together whatever the case. Immutable; any thread.
class FoldedTexts
{
public:
    FoldedTexts() = default;
    /// `textAt` gives each of the `count` texts. They hold no line feeds.
    FoldedTexts(qsizetype count, const std::function<QString(qsizetype)> &textAt);

    /// For each text, 1 when it contains `text`. Takes time in proportion to the texts' length,
    /// a millisecond or two for 200,000 names.
    std::vector<quint8> containing(const QString &text) const;

private:
    /// The texts, case-folded, in UTF-8, each followed by a line feed.
    QByteArray m_lines;
    /// Where each text's line feed stands.
    std::vector<qsizetype> m_ends;
};

} // namespace lumaro
