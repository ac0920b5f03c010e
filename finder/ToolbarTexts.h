#pragma once

#include <QCoreApplication>
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
    return QCoreApplication::translate("ToolbarTexts",
                                       "Manage Block List (Add or remove blocked domains)");
}

inline QString proxyToolTip(bool isEnabled)
{
    return isEnabled
        ? QCoreApplication::translate("ToolbarTexts",
                                      "VPN / Proxy: Active (Bypassing blocked sites)")
        : QCoreApplication::translate("ToolbarTexts", "VPN / Proxy: Off (Click to enable)");
}

inline QString proxySettingsToolTip()
{
    return QCoreApplication::translate("ToolbarTexts",
                                       "Configure Proxy / VPN Server (SOCKS5 / HTTP)");
}

inline QString starToolTip(bool isFavorite)
{
    return isFavorite
        ? QCoreApplication::translate("ToolbarTexts", "Saved in Web List (Click to unsave)")
        : QCoreApplication::translate("ToolbarTexts", "Save website to Web List");
}

inline QString webListToolTip()
{
    return QCoreApplication::translate("ToolbarTexts", "Show Saved Websites & Visited History");
}

} // namespace lumaro
