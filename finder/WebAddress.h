#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace lumaro {

/// What `text` leads to, with https:// before it unless it names a scheme itself. Empty for
/// anything but an http or https address.
std::optional<QUrl> webUrl(const QString &text);

/// How an address is shown: in full, a site's root without its slash.
QString displayAddress(const QUrl &url);

/// A typed or visited address as it is kept: complete, http or https, a site's root without its
/// slash. Empty for anything else, and for an address of more than 16,384 characters.
std::optional<QString> normalizedWebAddress(const QString &text);

/// What two addresses of the same page have in common: neither the host's case nor a leading
/// "www." counts.
QString webAddressKey(const QString &address);

} // namespace lumaro
