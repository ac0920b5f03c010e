#include "playlist/PlaylistParser.h"

#include "playlist/PlaylistText.h"
#include "playlist/UrlPath.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace lumaro {

namespace {

using Slice = PlaylistEntriesBuilder::Slice;

constexpr QByteArrayView extInfTag = "#EXTINF:";

// Attributes

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

// Titles

/// What follows the first comma, wherever it stands; without anything after one, the whole line.
QByteArrayView titleOf(QByteArrayView line)
{
    const qsizetype comma = line.indexOf(',');
    if (comma < 0)
        return line;
    const QByteArrayView title = line.sliced(comma + 1);
    return text::trimmedBlanks(title.isEmpty() ? line.first(comma) : title);
}

// Addresses

/// Legal in an address after its authority as it stands (RFC 3986, section 2); percent signs need
/// a closer look.
constexpr std::array<bool, 256> plainAddressBytes = [] {
    std::array<bool, 256> plain{};
    for (const char c : std::string_view("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         "0123456789-._~:/?@!$&'()*+,;="))
        plain[uchar(c)] = true;
    return plain;
}();

/// Resolves address lines against the playlist's own address.
class AddressReader
{
public:
    explicit AddressReader(const QUrl &baseURL)
        : m_base(baseURL)
    {
    }

    /// True when `line` is a complete web address that stays exactly as it is. QUrl judges each
    /// authority once; lists of channels have few.
    bool isPlainWebAddress(QByteArrayView line)
    {
        const qsizetype scheme = line.startsWith("http://") ? 7
            : line.startsWith("https://")                   ? 8
                                                            : 0;
        if (scheme == 0)
            return false;
        const auto end = std::find_if(line.begin() + scheme, line.end(),
                                      [](char c) { return c == '/' || c == '?' || c == '#'; });
        if (!std::all_of(end, line.end(), [](char c) { return plainAddressBytes[uchar(c)]; }))
            return false;
        return isKnownAuthority({line.begin(), end});
    }

    /// The absolute form of any other line; empty when it is no address.
    std::optional<QUrl> resolve(QByteArrayView line) const
    {
        const QUrl address(QString::fromUtf8(line), QUrl::StrictMode);
        if (!address.isValid())
            return std::nullopt;
        QUrl absolute = address.isRelative() ? m_base.resolved(address) : address;
        if (!absolute.isValid() || absolute.isRelative())
            return std::nullopt;
        return absolute;
    }

private:
    bool isKnownAuthority(QByteArrayView root)
    {
        if (root == m_lastRoot)
            return true;
        const QUrl url(QString::fromUtf8(root), QUrl::StrictMode);
        if (!url.isValid() || url.host().isEmpty() || url.toEncoded() != root)
            return false;
        m_lastRoot = root.toByteArray();
        return true;
    }

    QUrl m_base;
    /// Scheme and authority that were accepted last.
    QByteArray m_lastRoot;
};

QString nameFor(const QUrl &url)
{
    for (const QString &name : {lastPathComponent(url), url.host()}) {
        if (!name.isEmpty())
            return name;
    }
    return QStringLiteral("Stream");
}

/// What an #EXTINF line says of the address that follows it.
struct PendingEntry
{
    QByteArrayView name;
    Slice logo;
    int group = -1;
    int country = -1;
};

class Reader
{
public:
    Reader(const QByteArray &text, const QUrl &baseURL)
        : m_text(text)
        , m_addresses(baseURL)
        , m_builder(text)
    {
    }

    PlaylistEntries read()
    {
        text::Lines lines(m_text);
        while (const auto line = lines.next())
            readLine(text::trimmed(*line));
        return m_builder.build();
    }

private:
    void readLine(QByteArrayView line)
    {
        if (line.isEmpty())
            return;
        if (line.startsWith(extInfTag))
            m_pending = pendingEntry(line);
        else if (!line.startsWith('#'))
            readAddress(line);
    }

    PendingEntry pendingEntry(QByteArrayView line)
    {
        const Attributes attributes(line);
        PendingEntry pending;
        pending.name = titleOf(line);
        if (pending.name.isEmpty())
            pending.name = attributes[TvgName];
        pending.logo = logo(attributes[TvgLogo]);
        if (const QByteArrayView group = attributes[GroupTitle]; !group.isEmpty())
            pending.group = m_builder.group(group);
        pending.country = country(attributes);
        return pending;
    }

    Slice logo(QByteArrayView address)
    {
        if (address.isEmpty() || m_addresses.isPlainWebAddress(address))
            return m_builder.inText(address);
        const QUrl url(QString::fromUtf8(address), QUrl::StrictMode);
        return url.isValid() ? m_builder.add(url.toEncoded()) : Slice();
    }

    int country(const Attributes &attributes)
    {
        const QByteArrayView tvgCountry = attributes[TvgCountry];
        auto code = normalizedCountryCode(tvgCountry.isEmpty() ? attributes[Country] : tvgCountry);
        if (!code)
            code = inferredCountryCode(attributes[TvgId]);
        return code ? m_builder.country(*code) : -1;
    }

    void readAddress(QByteArrayView line)
    {
        const bool plain = m_addresses.isPlainWebAddress(line);
        if (plain && !m_pending.name.isEmpty()) {
            append(m_builder.inText(m_pending.name), m_builder.inText(line));
            return;
        }
        const std::optional<QUrl> url = m_addresses.resolve(line);
        if (!url)
            return;
        append(m_pending.name.isEmpty() ? m_builder.add(nameFor(*url).toUtf8())
                                        : m_builder.inText(m_pending.name),
               plain ? m_builder.inText(line) : m_builder.add(url->toEncoded()));
    }

    void append(Slice name, Slice url)
    {
        m_builder.append(name, url, m_pending.logo, m_pending.group, m_pending.country);
        m_pending = {};
    }

    QByteArray m_text;
    AddressReader m_addresses;
    PlaylistEntriesBuilder m_builder;
    PendingEntry m_pending;
};

} // namespace

QString description(PlaylistError error)
{
    switch (error) {
    case PlaylistError::invalidEncoding:
        return QStringLiteral("The playlist text could not be read.");
    case PlaylistError::empty:
        return QStringLiteral("No playable address was found in the playlist.");
    }
    Q_UNREACHABLE();
}

PlaylistEntries PlaylistParser::parse(const QByteArray &text, const QUrl &baseURL)
{
    if (text.size() > PlaylistEntries::maximumTextSize)
        return {};
    return Reader(text, baseURL).read();
}

std::expected<QByteArray, PlaylistError> PlaylistParser::decode(QByteArray bytes)
{
    if (bytes.size() > PlaylistEntries::maximumTextSize)
        return std::unexpected(PlaylistError::invalidEncoding);
    return text::decodeUtf8OrLatin1(std::move(bytes));
}

std::expected<PlaylistEntries, PlaylistError> PlaylistParser::read(QByteArray bytes,
                                                                   const QUrl &baseURL)
{
    const auto text = decode(std::move(bytes));
    if (!text)
        return std::unexpected(text.error());
    PlaylistEntries entries = parse(*text, baseURL);
    if (entries.isEmpty())
        return std::unexpected(PlaylistError::empty);
    return entries;
}

} // namespace lumaro
