#pragma once

#include "playlist/PlaylistEntries.h"

#include <QString>
#include <QUrl>

#include <expected>

namespace lumaro {

/// Reads a playlist's bytes, which came from `base`; otherwise a sentence for the user. Any thread.
std::expected<PlaylistEntries, QString> readPlaylist(const QByteArray &bytes, const QUrl &base);

/// The local file is a list of channels by its name; one that is an HLS playlist is not, since that
/// is one stream. Looks into files that may be either.
bool isChannelListFile(const QUrl &file);

/// Reads a local M3U file of at most `maximumSize` bytes; otherwise a sentence for the user.
/// Blocks while it reads, so it runs in the background. Any thread.
std::expected<PlaylistEntries, QString> readPlaylistFile(const QUrl &file, qint64 maximumSize);

} // namespace lumaro
