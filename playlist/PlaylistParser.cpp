#include "playlist/PlaylistParser.h"

#include "platform/Utf8Text.h"
#include "playlist/AddressReader.h"
#include "playlist/ExtInf.h"
#include "playlist/UrlPath.h"

#include <QCoreApplication>

namespace lumaro {

namespace {

using Slice = PlaylistEntriesBuilder::Slice;

QString nameFor(const QUrl &url)
{
    for (const QString &name : {lastPathComponent(url), url.host()}) {
        if (!name.isEmpty())
            return name;
    }
    return QStringLiteral("Stream");
}

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
        if (line.startsWith(ExtInf::tag))
            m_pending = ExtInf::read(line);
        else if (!line.startsWith('#'))
            readAddress(line);
    }

    void readAddress(QByteArrayView line)
    {
        const bool isPlain = m_addresses.isPlainWebAddress(line);
        if (isPlain && !m_pending.name.isEmpty()) {
            append(m_builder.inText(m_pending.name), m_builder.inText(line));
            return;
        }
        if (m_builder.addedSize() > PlaylistParser::maximumAddedSize)
            return;
        const std::optional<QUrl> url = m_addresses.resolved(line);
        if (!url)
            return;
        append(m_pending.name.isEmpty() ? m_builder.add(nameFor(*url).toUtf8())
                                        : m_builder.inText(m_pending.name),
               place(line, url->toEncoded()));
    }

    void append(Slice name, Slice url)
    {
        m_builder.append(name, url, logo(), m_pending.group, m_pending.country);
        m_pending = {};
    }

    Slice logo()
    {
        const QByteArrayView address = m_pending.logo;
        if (address.isEmpty() || m_addresses.isPlainWebAddress(address))
            return m_builder.inText(address);
        if (address.size() > AddressReader::maximumLength)
            return {};
        const auto url = AddressReader::parsed(address);
        return url ? place(address, url->toEncoded()) : Slice();
    }

    /// The place of `address`, which `part` of the text was read as.
    Slice place(QByteArrayView part, QByteArrayView address)
    {
        return part == address ? m_builder.inText(part) : m_builder.add(address);
    }

    QByteArray m_text;
    AddressReader m_addresses;
    PlaylistEntriesBuilder m_builder;
    /// Waits for its address.
    ExtInf m_pending;
};

} // namespace

QString description(PlaylistError error)
{
    switch (error) {
    case PlaylistError::invalidEncoding:
        return QCoreApplication::translate("PlaylistParser",
                                           "The playlist text could not be read.");
    case PlaylistError::empty:
        return QCoreApplication::translate("PlaylistParser",
                                           "No playable address was found in the playlist.");
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
    // Any bytes can be read as Latin-1, but what has zeros besides is no text: a film or a picture
    // must not replace the user's channels by nonsense.
    if (bytes.contains('\0') && !QUtf8StringView(bytes).isValidUtf8())
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
