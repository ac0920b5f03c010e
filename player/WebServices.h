#pragma once

#include <QString>
#include <QUrl>

namespace lumaro {

/// The hosts of the two video sites that have embedded players.
namespace service {
inline constexpr char16_t youTubeShortLinkHost[] = u"youtu.be";
inline constexpr char16_t youTubeDomain[] = u"youtube.com";
inline constexpr char16_t youTubeNoCookieDomain[] = u"youtube-nocookie.com";
inline constexpr char16_t okDomain[] = u"ok.ru";
} // namespace service

/// Where the embedded players come from, and as whom they are embedded. Chosen by the composition
/// root; tests put servers of their own in the place of the sites.
struct WebServices
{
    /// Serves YouTube's iframe player API.
    QUrl youTube{QStringLiteral("https://www.youtube.com")};
    /// Serves OK.ru's embedded player.
    QUrl okVideo{QStringLiteral("https://ok.ru")};
    /// The origin of the page around YouTube's player, which tells YouTube who embeds it (YouTube
    /// API Services, Required Minimum Functionality, "API Client Identity"). Nothing is loaded from
    /// there, so it is a name that nobody can own (RFC 6761, section 6.4).
    QUrl product{QStringLiteral("https://lumaro.invalid")};
};

} // namespace lumaro
