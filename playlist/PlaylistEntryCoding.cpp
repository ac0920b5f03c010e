#include "playlist/PlaylistEntryCoding.h"

#include "platform/JsonText.h"
#include "playlist/AddressReader.h"
#include "playlist/JsonReader.h"

#include <algorithm>
#include <array>

namespace lumaro {

namespace {

using Slice = PlaylistEntriesBuilder::Slice;

void writeField(QByteArray &json, const char *key, QByteArrayView value)
{
    json += json.endsWith('{') ? "\"" : ",\"";
    json += key;
    json += "\":";
    appendJsonString(json, value);
}

void writeOptionalField(QByteArray &json, const char *key, QByteArrayView value)
{
    if (!value.isEmpty())
        writeField(json, key, value);
}

QByteArrayView bytes(QUtf8StringView text)
{
    return {text.data(), text.size()};
}

/// What the string says; lives no longer than the JSON text.
QByteArray textOf(const JsonReader::String &string)
{
    return string.hasEscapes ? string.text()
                             : QByteArray::fromRawData(string.raw.data(), string.raw.size());
}

/// The form that is written, in either case (RFC 4122, section 3); QUuid forgives more.
std::optional<QUuid> idOf(const JsonReader::String &string)
{
    constexpr QByteArrayView form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    const QByteArray text = textOf(string);
    if (text.size() != form.size())
        return std::nullopt;
    std::array<char, 16> bytes{};
    size_t digits = 0;
    for (qsizetype i = 0; i < form.size(); ++i) {
        const char c = text.at(i);
        if (form[i] == 'x') {
            const int digit = hexDigit(c);
            if (digit < 0)
                return std::nullopt;
            char &byte = bytes[digits++ / 2];
            byte = char(byte << 4 | digit);
        } else if (c != form[i]) {
            return std::nullopt;
        }
    }
    return QUuid::fromRfc4122(bytes);
}

/// Reads the array's objects into a builder.
class EntriesDecoder
{
public:
    explicit EntriesDecoder(const QByteArray &json)
        : m_reader(json)
        , m_builder(json)
    {
    }

    std::optional<PlaylistEntries> decode()
    {
        if (!m_reader.enterArray())
            return std::nullopt;
        while (m_reader.nextElement()) {
            if (!readEntry())
                return std::nullopt;
        }
        return m_reader.atEnd() ? std::optional(m_builder.build()) : std::nullopt;
    }

private:
    struct Fields
    {
        std::optional<QUuid> id;
        std::optional<Slice> name;
        std::optional<Slice> url;
        Slice logo;
        QByteArray group;
        QByteArray country;
    };

    bool readEntry()
    {
        Fields fields;
        JsonReader::String key;
        m_reader.enterObject();
        while (m_reader.nextKey(key)) {
            if (!readField(textOf(key), fields))
                return false;
        }
        if (m_reader.failed() || !fields.id || !fields.name || !fields.url)
            return false;
        m_builder.append(*fields.id, *fields.name, *fields.url, fields.logo, fields.group,
                         fields.country);
        return true;
    }

    bool readField(const QByteArray &key, Fields &fields)
    {
        JsonReader::String value;
        if (key == "id")
            return m_reader.readString(value) && (fields.id = idOf(value));
        if (key == "name") {
            if (m_reader.readString(value))
                fields.name = text(value);
            return fields.name.has_value();
        }
        if (key == "url")
            return m_reader.readString(value) && (fields.url = address(value));
        if (key == "logoURL")
            return readOptionalAddress(fields.logo);
        if (key == "groupTitle")
            return readOptionalText(fields.group);
        if (key == "countryCode")
            return readOptionalText(fields.country);
        return m_reader.skipValue();
    }

    // An optional key that is there must be right.

    bool readOptionalAddress(Slice &logo)
    {
        JsonReader::String value;
        if (m_reader.skipNull())
            return true;
        if (!m_reader.readString(value))
            return false;
        const auto slice = address(value);
        logo = slice.value_or(Slice());
        return slice.has_value();
    }

    bool readOptionalText(QByteArray &text)
    {
        JsonReader::String value;
        if (m_reader.skipNull())
            return true;
        if (!m_reader.readString(value))
            return false;
        text = textOf(value);
        return true;
    }

    Slice text(const JsonReader::String &string)
    {
        return string.hasEscapes ? m_builder.add(string.text()) : m_builder.inText(string.raw);
    }

    std::optional<Slice> address(const JsonReader::String &string)
    {
        if (!string.hasEscapes && m_addresses.isPlainWebAddress(string.raw))
            return m_builder.inText(string.raw);
        const auto url = AddressReader::parsed(string.text());
        return url ? std::optional(m_builder.add(url->toEncoded())) : std::nullopt;
    }

    JsonReader m_reader;
    PlaylistEntriesBuilder m_builder;
    AddressReader m_addresses{QUrl()};
};

} // namespace

QByteArray encodeEntries(const PlaylistEntries &entries)
{
    constexpr qsizetype likelySize = 256;
    QByteArray json;
    json.reserve(likelySize * entries.size());
    json += '[';
    for (qsizetype i = 0; i < entries.size(); ++i) {
        json += json.endsWith('[') ? "{" : ",{";
        writeField(json, "id", entries.id(i).toByteArray(QUuid::WithoutBraces).toUpper());
        writeField(json, "name", bytes(entries.name(i)));
        writeField(json, "url", bytes(entries.address(i)));
        writeOptionalField(json, "logoURL", bytes(entries.logoAddress(i)));
        writeOptionalField(json, "groupTitle", bytes(entries.group(i)));
        writeOptionalField(json, "countryCode", bytes(entries.countryCode(i)));
        json += '}';
    }
    return json + ']';
}

std::optional<PlaylistEntries> decodeEntries(const QByteArray &json)
{
    if (json.size() > PlaylistEntries::maximumTextSize)
        return std::nullopt;
    return EntriesDecoder(json).decode();
}

} // namespace lumaro
