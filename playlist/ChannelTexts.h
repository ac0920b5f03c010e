#pragma once

#include <QString>

namespace lumaro {

/// The first letter or digit of `name`, in upper case: what stands in for a missing logo.
QString initialOf(const QString &name);

/// An http or https address. Showing any other that somebody else's playlist names could make a
/// list read the user's own files and devices.
bool isWebAddress(QUtf8StringView address);

/// The address of a logo that may be shown: of the web, or of an ordinary image file on this
/// machine; otherwise empty. Looks at the file.
QString logoThatMayShow(QUtf8StringView address);

} // namespace lumaro
