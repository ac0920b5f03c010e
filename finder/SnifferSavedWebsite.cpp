#include "finder/SnifferSavedWebsite.h"

#include "platform/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>
#include <QUrl>

#include <cmath>

namespace lumaro {

namespace {

const QDateTime &referenceDate()
{
    static const QDateTime date(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
    return date;
}

QByteArray encodedDate(const QDateTime &date)
{
    const double seconds = double(referenceDate().msecsTo(date)) / 1000;
    return QByteArray::number(seconds, 'f', 3);
}

std::optional<QDateTime> dateOf(const QJsonValue &value)
{
    if (value.isString()) {
        const QDateTime date = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
        return date.isValid() ? std::optional(date.toUTC()) : std::nullopt;
    }
    // Some three thousand years either way.
    constexpr double farAway = 1e11;
    const double seconds = value.toDouble(farAway);
    if (!(std::abs(seconds) < farAway))
        return std::nullopt;
    return referenceDate().addMSecs(std::llround(seconds * 1000));
}

std::optional<qint64> countOf(const QJsonValue &value)
{
    constexpr qint64 none = -1;
    const qint64 count = value.toInteger(none);
    return count == none && value.toDouble() != double(none) ? std::nullopt
                                                             : std::optional(qMax(count, 0));
}

QByteArray encodedWebsite(const SnifferSavedWebsite &website)
{
    return "{\"id\":" + jsonString(website.id.toString(QUuid::WithoutBraces).toUpper())
        + ",\"urlString\":" + jsonString(website.urlString)
        + ",\"title\":" + jsonString(website.title) + ",\"savedAt\":" + encodedDate(website.savedAt)
        + ",\"visitCount\":" + QByteArray::number(website.visitCount)
        + ",\"isFavorite\":" + (website.isFavorite ? "true" : "false") + '}';
}

std::optional<SnifferSavedWebsite> decodedWebsite(const QJsonObject &object)
{
    const QUuid id = QUuid::fromString(object.value(QLatin1StringView("id")).toString());
    const QJsonValue address = object.value(QLatin1StringView("urlString"));
    const QJsonValue title = object.value(QLatin1StringView("title"));
    const auto savedAt = dateOf(object.value(QLatin1StringView("savedAt")));
    const auto visitCount = countOf(object.value(QLatin1StringView("visitCount")));
    const QJsonValue isFavorite = object.value(QLatin1StringView("isFavorite"));
    if (id.isNull() || !address.isString() || !title.isString() || !savedAt || !visitCount
        || !isFavorite.isBool())
        return std::nullopt;
    return SnifferSavedWebsite{id,       address.toString(), title.toString(),
                               *savedAt, *visitCount,        isFavorite.toBool()};
}

} // namespace

QString SnifferSavedWebsite::displayTitle() const
{
    QString trimmed = title.trimmed();
    if (!trimmed.isEmpty() && trimmed != urlString)
        return trimmed;
    const QString host = QUrl(urlString).host();
    return host.isEmpty() ? urlString : host;
}

QByteArray encodeWebsites(const QList<SnifferSavedWebsite> &websites)
{
    QByteArray json("[");
    for (const SnifferSavedWebsite &website : websites)
        json += (json.endsWith('[') ? "" : ",\n") + encodedWebsite(website);
    return json + ']';
}

std::optional<QList<SnifferSavedWebsite>> decodeWebsites(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<SnifferSavedWebsite> websites;
    const QJsonArray array = document.array();
    for (const auto &value : array) {
        const auto website = decodedWebsite(value.toObject());
        if (!website)
            return std::nullopt;
        websites.append(*website);
    }
    return websites;
}

} // namespace lumaro
