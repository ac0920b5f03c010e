#include "playlist/ExtInf.h"

#include "platform/Utf8Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace lumaro {

namespace {

enum Attribute : size_t {
    TvgName,
    TvgLogo,
    GroupTitle,
    TvgCountry,
    Country,
    TvgId,
    AttributeCount
};

constexpr std::array<QByteArrayView, AttributeCount> attributeNames{
    "tvg-name", "tvg-logo", "group-title", "tvg-country", "country", "tvg-id",
};

bool endsWithName(QByteArrayView text, QByteArrayView name)
{
    return text.size() >= name.size()
        && qstrnicmp(text.data() + text.size() - name.size(), name.data(), size_t(name.size()))
        == 0;
}

/// The attributes of an #EXTINF line, all found in one pass. Values are not unescaped.
class Attributes
{
public:
    explicit Attributes(QByteArrayView line)
    {
        const char *const end = line.data() + line.size();
        const char *at = line.data();
        while (at < end) {
            at = static_cast<const char *>(std::memchr(at, '=', size_t(end - at)));
            if (!at)
                return;
            if (at + 1 < end && at[1] == '"')
                note(QByteArrayView(line.data(), at), QByteArrayView(at + 2, end));
            ++at;
        }
    }

    /// Empty when the attribute is absent or has no value.
    QByteArrayView operator[](Attribute attribute) const { return m_values[attribute]; }

private:
    /// `before` ends with an attribute's name, perhaps one that is asked for; its value begins
    /// `after`.
    void note(QByteArrayView before, QByteArrayView after)
    {
        for (size_t i = 0; i < AttributeCount; ++i) {
            if (m_seen[i] || !endsWithName(before, attributeNames[i]))
                continue;
            // Every "tvg-country" also ends with "country", but is none.
            if (i == Country && endsWithName(before, attributeNames[TvgCountry]))
                continue;
            m_seen[i] = true;
            const qsizetype quote = after.indexOf('"');
            if (quote >= 0)
                m_values[i] = text::trimmed(after.first(quote));
        }
    }

    std::array<QByteArrayView, AttributeCount> m_values;
    std::array<bool, AttributeCount> m_seen{};
};

/// The part before the first separator, as the first non-empty piece of a split.
template <typename IsSeparator>
QByteArrayView firstPiece(QByteArrayView value, IsSeparator isSeparator)
{
    const auto begin = std::ranges::find_if_not(value, isSeparator);
    const auto end = std::find_if(begin, value.end(), isSeparator);
    return {begin, end};
}

std::optional<QByteArray> normalizedCountryCode(QByteArrayView value)
{
    const QByteArrayView first =
        firstPiece(value, [](char c) { return c == ',' || c == ';' || c == ' '; });
    return text::twoCharacterCode(first);
}

std::optional<QByteArray> inferredCountryCode(QByteArrayView tvgID)
{
    QByteArrayView channel = firstPiece(tvgID, [](char c) { return c == '@'; });
    if (channel.isEmpty())
        channel = tvgID;
    while (channel.endsWith('.'))
        channel.chop(1);
    return text::twoCharacterCode(channel.sliced(channel.lastIndexOf('.') + 1));
}

/// Empty when there is none.
QByteArray countryOf(const Attributes &attributes)
{
    const QByteArrayView tvgCountry = attributes[TvgCountry];
    auto code = normalizedCountryCode(tvgCountry.isEmpty() ? attributes[Country] : tvgCountry);
    if (!code)
        code = inferredCountryCode(attributes[TvgId]);
    return code.value_or(QByteArray());
}

/// What follows the first comma, wherever it stands; without anything after one, the whole line.
QByteArrayView titleOf(QByteArrayView line)
{
    const qsizetype comma = line.indexOf(',');
    if (comma < 0)
        return line;
    const QByteArrayView title = line.sliced(comma + 1);
    return text::trimmedBlanks(title.isEmpty() ? line.first(comma) : title);
}

} // namespace

ExtInf ExtInf::read(QByteArrayView line)
{
    const Attributes attributes(line);
    QByteArrayView name = titleOf(line);
    if (name.isEmpty())
        name = attributes[TvgName];
    return {name, attributes[TvgLogo], attributes[GroupTitle], countryOf(attributes)};
}

} // namespace lumaro
