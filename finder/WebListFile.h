#pragma once

#include "finder/WebList.h"

#include <QUrl>

namespace lumaro {

/// Why a file holds no web list for us.
enum class WebListFileError {
    Missing,
    NotAFile,
    TooLarge,
    Unreadable,
    NotAWebList,
};

/// An English sentence for the log.
QString description(WebListFileError error);

/// The longest web list that is read, in bytes.
inline constexpr qint64 maximumWebListSize = 64 * 1024 * 1024;

/// Reads an exported list. Leaves out what is no http or https address; what claims to have been
/// saved later than `now` was saved now. Blocks while it reads. Any thread.
std::expected<WebList, WebListFileError> readWebListFile(const QUrl &file, const QDateTime &now);

} // namespace lumaro
