#pragma once

#include "platform/AtomicFile.h"
#include "platform/HttpClient.h"

#include <variant>

namespace lumaro {

/// Why a stream cannot be saved, whatever the network and the disk do.
enum class DownloadError {
    invalidPlaylist,
    noSegments,
    encryptedStream,
    byteRangeUnsupported,
    serverRejected,
    cannotCreateDestination,
};

/// Why a download ended without its stream: the stream itself, the network or the disk.
using DownloadFailure = std::variant<DownloadError, HttpError, FileWriteError>;

template <typename T>
using DownloadResult = std::expected<T, DownloadFailure>;

/// An English sentence for the user.
QString description(DownloadError error);
QString description(const DownloadFailure &failure);

} // namespace lumaro
