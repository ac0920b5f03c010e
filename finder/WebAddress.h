#pragma once

#include <QString>

#include <optional>

namespace lumaro {

/// A typed or visited address as it is kept: complete, http or https, a site's root without its
/// slash. Empty for anything else, and for an address of more than 16,384 characters.
std::optional<QString> normalizedWebAddress(const QString &text);

/// What two addresses of the same page have in common: neither the host's case nor a leading
/// "www." counts.
QString webAddressKey(const QString &address);

} // namespace lumaro
