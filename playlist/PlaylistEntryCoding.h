#pragma once

#include "playlist/PlaylistEntries.h"

#include <QByteArray>

#include <optional>

namespace lumaro {

/// The entries as a JSON array of objects with the keys id, name, url, logoURL, groupTitle and
/// countryCode, in this order; the last three only where they are set. Any thread.
QByteArray encodeEntries(const PlaylistEntries &entries);

/// What encodeEntries() made; shares its bytes. Empty when the data is no such array or a single
/// entry lacks its id, name or url.
std::optional<PlaylistEntries> decodeEntries(const QByteArray &json);

} // namespace lumaro
