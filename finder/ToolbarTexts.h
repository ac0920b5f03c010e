#pragma once

#include <QString>

namespace lumaro {

// What the buttons of the stream finder's toolbar say they do. The ad blocker's speaks Turkish.

inline QString adBlockerToolTip(bool isEnabled)
{
    return isEnabled ? QStringLiteral("Ad Blocker: Açık (Reklamlar engelleniyor)")
                     : QStringLiteral("Ad Blocker: Kapalı (Açmak için tıklayın)");
}

inline QString blockListToolTip()
{
    return QStringLiteral("Manage Block List (Add or remove blocked domains)");
}

inline QString proxyToolTip(bool isEnabled)
{
    return isEnabled ? QStringLiteral("VPN / Proxy: Active (Bypassing blocked sites)")
                     : QStringLiteral("VPN / Proxy: Off (Click to enable)");
}

inline QString proxySettingsToolTip()
{
    return QStringLiteral("Configure Proxy / VPN Server (SOCKS5 / HTTP)");
}

inline QString starToolTip(bool isFavorite)
{
    return isFavorite ? QStringLiteral("Saved in Web List (Click to unsave)")
                      : QStringLiteral("Save website to Web List");
}

inline QString webListToolTip()
{
    return QStringLiteral("Show Saved Websites & Visited History");
}

} // namespace lumaro
