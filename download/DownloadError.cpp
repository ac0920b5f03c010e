#include "download/DownloadError.h"

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
        return QStringLiteral("The disk is full. Choose another Save Folder or make some room.");
    return u"The file could not be written: " + error.description + u'.';
}

} // namespace

QString description(DownloadError error)
{
    switch (error) {
    case DownloadError::invalidPlaylist:
        return QStringLiteral("This URL is not a valid M3U8 playlist.");
    case DownloadError::noSegments:
        return QStringLiteral("No downloadable video segments were found.");
    case DownloadError::encryptedStream:
        return QStringLiteral("Encrypted or DRM-protected HLS streams cannot be downloaded.");
    case DownloadError::byteRangeUnsupported:
        return QStringLiteral("This byte-range HLS format is not supported yet.");
    case DownloadError::serverRejected:
        return QStringLiteral("The stream server rejected the download request.");
    case DownloadError::cannotCreateDestination:
        return QStringLiteral(
            "The selected download folder is no longer available. Choose another Save Folder.");
    }
    Q_UNREACHABLE();
}

QString description(const DownloadFailure &failure)
{
    return std::visit([](const auto &error) { return sentence(error); }, failure);
}

} // namespace lumaro
