#pragma once

#include "playlist/PlaylistEntries.h"

#include <QByteArray>

namespace lumaro {

/// The entries as extended M3U, in UTF-8: an #EXTINF line with the attributes that IPTV players
/// read and an address line for each, after the line #EXTM3U. What would break a line or a quoted
/// value is replaced. Any thread.
QByteArray writePlaylist(const PlaylistEntries &entries);

} // namespace lumaro
