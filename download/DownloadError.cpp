#include "download/DownloadError.h"

#include <QCoreApplication>

namespace lumaro {

namespace {

QString sentence(DownloadError error)
{
    return description(error);
}

QString sentence(const HttpError &error)
{
    return error.description();
}

QString sentence(const FileWriteError &error)
{
    if (error.kind == FileWriteError::Kind::NoSpace)
        return QCoreApplication::translate(
            "DownloadError", "The disk is full. Choose another Save Folder or make some room.");
    return QCoreApplication::translate("DownloadError", "The file could not be written: %1.")
        .arg(error.description);
}

} // namespace

QString description(DownloadError error)
{
    switch (error) {
    case DownloadError::invalidPlaylist:
        return QCoreApplication::translate("DownloadError",
                                           "This URL is not a valid M3U8 playlist.");
    case DownloadError::noSegments:
        return QCoreApplication::translate("DownloadError",
                                           "No downloadable video segments were found.");
    case DownloadError::encryptedStream:
        return QCoreApplication::translate(
            "DownloadError", "Encrypted or DRM-protected HLS streams cannot be downloaded.");
    case DownloadError::byteRangeUnsupported:
        return QCoreApplication::translate("DownloadError",
                                           "This byte-range HLS format is not supported yet.");
    case DownloadError::serverRejected:
        return QCoreApplication::translate("DownloadError",
                                           "The stream server rejected the download request.");
    case DownloadError::cannotCreateDestination:
        return QCoreApplication::translate(
            "DownloadError",
            "The selected download folder is no longer available. Choose another Save Folder.");
    }
    Q_UNREACHABLE();
}

QString description(const DownloadFailure &failure)
{
    return std::visit([](const auto &error) { return sentence(error); }, failure);
}

} // namespace lumaro
