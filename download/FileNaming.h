#pragma once

#include <QString>

#include <optional>

namespace lumaro {

/// `name` as the name of a file without its extension: at most 100 characters as a reader counts
/// them, no separators, nothing that a terminal would obey.
QString safeFilename(const QString &name);

/// Something, even a broken link, has this path.
bool isTaken(const QString &path);

/// The first path of "NAME.EXTENSION", "NAME 2.EXTENSION", … in `folder` that is not taken; empty
/// when the folder does not exist. Without a name it is "HLS Video".
std::optional<QString> uniqueDestination(const QString &folder, const std::optional<QString> &name,
                                         const QString &fileExtension);

} // namespace lumaro
