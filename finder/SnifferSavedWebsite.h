#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace lumaro {

/// A website that the user saved or visited.
struct SnifferSavedWebsite
{
    QUuid id;
    /// As normalizedWebAddress() gives it.
    QString urlString;
    /// The page's title when it was saved or last visited.
    QString title;
    /// When it was saved or last visited.
    QDateTime savedAt;
    qint64 visitCount = 0;
    /// False for an entry of the history.
    bool isFavorite = false;

    /// The title if it says more than the address does, else the address's host, else the address.
    QString displayTitle() const;

    bool operator==(const SnifferSavedWebsite &) const = default;
};

inline size_t qHash(const SnifferSavedWebsite &website, size_t seed = 0)
{
    return qHash(website.id, seed);
}

/// A JSON array of objects with the keys id, urlString, title, savedAt, visitCount and isFavorite,
/// in this order. The time is a number of seconds since the beginning of 2001, UTC. Any thread.
QByteArray encodeWebsites(const QList<SnifferSavedWebsite> &websites);

/// What encodeWebsites() made; the time may also be ISO 8601 text, and further keys are ignored.
/// Empty when the data is no such array or a single object lacks a key or has a wrong type there.
/// Any thread.
std::optional<QList<SnifferSavedWebsite>> decodeWebsites(const QByteArray &json);

} // namespace lumaro
