#include "playlist/PlaylistEntryCoding.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace lumaro {

namespace {

/// A JSON string (RFC 8259, section 7), with its quotes.
QByteArray jsonString(const QString &text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.sliced(1).chopped(1);
}

QString urlText(const QUrl &url)
{
    return url.toString(QUrl::FullyEncoded);
}

void writeField(QByteArray &json, const char *key, const QString &value)
{
    json += json.endsWith('{') ? "\"" : ",\"";
    json += key;
    json += "\":";
    json += jsonString(value);
}

std::optional<QString> stringField(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QUrl> urlField(const QJsonObject &object, QLatin1StringView key)
{
    const auto text = stringField(object, key);
    if (!text)
        return std::nullopt;
    const QUrl url(*text, QUrl::StrictMode);
    return url.isValid() ? std::optional(url) : std::nullopt;
}

std::optional<QUuid> idField(const QJsonObject &object, QLatin1StringView key)
{
    const auto text = stringField(object, key);
    if (!text)
        return std::nullopt;
    const QUuid id = QUuid::fromString(*text);
    // Reading it forgives too much.
    const bool exact = id.toString(QUuid::WithoutBraces).compare(*text, Qt::CaseInsensitive) == 0;
    return exact ? std::optional(id) : std::nullopt;
}

/// An optional key that is there must be right.
bool isAbsent(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    return value.isUndefined() || value.isNull();
}

std::optional<PlaylistEntry> decodeEntry(const QJsonObject &object)
{
    constexpr QLatin1StringView logoKey("logoURL");
    constexpr QLatin1StringView groupKey("groupTitle");
    constexpr QLatin1StringView countryKey("countryCode");
    const auto id = idField(object, QLatin1StringView("id"));
    const auto name = stringField(object, QLatin1StringView("name"));
    const auto url = urlField(object, QLatin1StringView("url"));
    if (!id || !name || !url)
        return std::nullopt;
    PlaylistEntry entry{
        .id = *id,
        .name = *name,
        .url = *url,
        .logoURL = urlField(object, logoKey),
        .groupTitle = stringField(object, groupKey),
        .countryCode = stringField(object, countryKey),
    };
    const bool complete = (entry.logoURL || isAbsent(object, logoKey))
        && (entry.groupTitle || isAbsent(object, groupKey))
        && (entry.countryCode || isAbsent(object, countryKey));
    return complete ? std::optional(entry) : std::nullopt;
}

} // namespace

QByteArray encodeEntries(const QList<PlaylistEntry> &entries)
{
    QByteArray json("[");
    for (const PlaylistEntry &entry : entries) {
        json += json.endsWith('[') ? "{" : ",{";
        writeField(json, "id", entry.id.toString(QUuid::WithoutBraces).toUpper());
        writeField(json, "name", entry.name);
        writeField(json, "url", urlText(entry.url));
        if (entry.logoURL)
            writeField(json, "logoURL", urlText(*entry.logoURL));
        if (entry.groupTitle)
            writeField(json, "groupTitle", *entry.groupTitle);
        if (entry.countryCode)
            writeField(json, "countryCode", *entry.countryCode);
        json += '}';
    }
    return json + ']';
}

std::optional<QList<PlaylistEntry>> decodeEntries(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<PlaylistEntry> entries;
    const QJsonArray array = document.array();
    for (const auto &value : array) {
        const auto entry = decodeEntry(value.toObject());
        if (!entry)
            return std::nullopt;
        entries.append(*entry);
    }
    return entries;
}

} // namespace lumaro
