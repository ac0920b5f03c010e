#pragma once

#include "playlist/PlaylistEntry.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace lumaro {

/// The entries as a JSON array of objects with the keys id, name, url, logoURL, groupTitle and
/// countryCode, in this order; the last three only where they are set. Any thread.
QByteArray encodeEntries(const QList<PlaylistEntry> &entries);

/// What encodeEntries() made. Empty when the data is no such array or a single entry lacks its
/// id, name or url.
std::optional<QList<PlaylistEntry>> decodeEntries(const QByteArray &json);

} // namespace lumaro
