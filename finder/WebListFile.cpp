#include "finder/WebListFile.h"

#include "finder/WebAddress.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace lumaro {

namespace {

std::expected<QByteArray, WebListFileError> readBytes(const QUrl &file)
{
    const QString path = file.toLocalFile();
    const QFileInfo info(path);
    if (!info.exists())
        return std::unexpected(WebListFileError::Missing);
    // Reading a pipe or a device might never end.
    if (!info.isFile())
        return std::unexpected(WebListFileError::NotAFile);
    QFile input(path);
    if (!input.open(QIODevice::ReadOnly))
        return std::unexpected(WebListFileError::Unreadable);
    // The file may grow while it is read.
    QByteArray bytes = input.read(maximumWebListSize + 1);
    if (input.error() != QFileDevice::NoError)
        return std::unexpected(WebListFileError::Unreadable);
    if (bytes.size() > maximumWebListSize)
        return std::unexpected(WebListFileError::TooLarge);
    return bytes;
}

} // namespace

QString description(WebListFileError error)
{
    switch (error) {
    case WebListFileError::Missing:
        return QStringLiteral("The file does not exist.");
    case WebListFileError::NotAFile:
        return QStringLiteral("It is not a file.");
    case WebListFileError::TooLarge:
        return QStringLiteral("The file is too large for a web list.");
    case WebListFileError::Unreadable:
        return QStringLiteral("The file could not be read.");
    case WebListFileError::NotAWebList:
        return QStringLiteral("The file is not a web list.");
    }
    Q_UNREACHABLE();
}

std::expected<WebList, WebListFileError> readWebListFile(const QUrl &file, const QDateTime &now)
{
    const auto bytes = readBytes(file);
    if (!bytes)
        return std::unexpected(bytes.error());
    const auto decoded = decodeWebsites(*bytes);
    if (!decoded)
        return std::unexpected(WebListFileError::NotAWebList);
    QList<SnifferSavedWebsite> websites;
    for (SnifferSavedWebsite website : *decoded) {
        const auto address = normalizedWebAddress(website.urlString);
        if (!address)
            continue;
        website.urlString = *address;
        website.savedAt = std::min(website.savedAt, now);
        websites.append(website);
    }
    return WebList(websites);
}

} // namespace lumaro
