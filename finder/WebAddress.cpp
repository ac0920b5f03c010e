#include "finder/WebAddress.h"

namespace lumaro {

std::optional<QUrl> webUrl(const QString &text)
{
    QUrl url(text.contains(u"://") ? text : u"https://" + text);
    const bool isWeb = url.scheme() == u"http" || url.scheme() == u"https";
    // RFC 9110, section 4.2: without a host it is not one.
    return url.isValid() && isWeb && !url.host().isEmpty() ? std::optional(std::move(url))
                                                           : std::nullopt;
}

QString displayAddress(const QUrl &url)
{
    QString address = url.toString(QUrl::FullyEncoded);
    if (url.path() == u"/" && !url.hasQuery() && !url.hasFragment() && address.endsWith(u'/'))
        address.chop(1);
    return address;
}

std::optional<QString> normalizedWebAddress(const QString &text)
{
    constexpr qsizetype maximumLength = 16384;
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.size() > maximumLength)
        return std::nullopt;
    const auto url = webUrl(trimmed);
    return url ? std::optional(displayAddress(*url)) : std::nullopt;
}

QString webAddressKey(const QString &address)
{
    // Reading it lower-cases the scheme and the host.
    QUrl url(address);
    constexpr QLatin1StringView prefix("www.");
    const QString host = url.host(QUrl::FullyEncoded);
    if (host.startsWith(prefix))
        url.setHost(host.sliced(prefix.size()));
    return url.isValid() ? url.toString(QUrl::FullyEncoded) : address;
}

} // namespace lumaro
