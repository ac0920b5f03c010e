#include "player/PlaylistFile.h"

#include "playlist/PlaylistParser.h"
#include "playlist/UrlPath.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace lumaro {

namespace {

/// Every HLS playlist has one of these tags (RFC 8216, section 4.3).
bool isStreamPlaylist(const QString &path)
{
    constexpr qint64 enoughToTell = 64 * 1024;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray start = file.read(enoughToTell);
    return start.contains("#EXT-X-TARGETDURATION") || start.contains("#EXT-X-STREAM-INF");
}

} // namespace

bool isChannelListFile(const QUrl &file)
{
    const QString extension = pathExtension(file);
    return extension == u"m3u" || (extension == u"m3u8" && !isStreamPlaylist(file.toLocalFile()));
}

std::expected<PlaylistEntries, QString> readPlaylist(const QByteArray &bytes, const QUrl &base)
{
    auto entries = PlaylistParser::read(bytes, base);
    if (!entries)
        return std::unexpected(description(entries.error()));
    return *std::move(entries);
}

std::expected<PlaylistEntries, QString> readPlaylistFile(const QUrl &file, qint64 maximumSize)
{
    const QString path = file.toLocalFile();
    const QFileInfo info(path);
    if (!info.exists())
        return std::unexpected(
            QCoreApplication::translate("PlaylistFile", "The file does not exist."));
    // Reading a pipe or a device might never end.
    if (!info.isFile())
        return std::unexpected(QCoreApplication::translate("PlaylistFile", "It is not a file."));

    // What its size says need not be what comes.
    QFile input(path);
    QByteArray bytes;
    if (input.open(QIODevice::ReadOnly)) {
        constexpr qint64 pieceSize = 1024 * 1024;
        while (bytes.size() <= maximumSize && !input.atEnd()) {
            const QByteArray piece = input.read(pieceSize);
            if (piece.isEmpty())
                break;
            bytes += piece;
        }
    }
    if (input.error() != QFileDevice::NoError)
        return std::unexpected(
            QCoreApplication::translate("PlaylistFile", "The file could not be read."));
    if (bytes.size() > maximumSize)
        return std::unexpected(
            QCoreApplication::translate("PlaylistFile", "The file is too large for a playlist."));

    return readPlaylist(bytes, file);
}

} // namespace lumaro
