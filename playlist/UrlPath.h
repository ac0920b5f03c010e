#pragma once

#include <QString>
#include <QUrl>

namespace lumaro {

/// The last path component, percent-decoded, without a trailing slash; empty when there is none
/// or it is not valid UTF-8.
QString lastPathComponent(const QUrl &url);

/// The last path component's extension without the dot, lower-cased; a leading dot starts none.
QString pathExtension(const QUrl &url);

} // namespace lumaro
