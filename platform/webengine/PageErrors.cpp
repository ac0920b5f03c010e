#include "platform/webengine/PageErrors.h"

#include "platform/ConnectionFailures.h"

#include <QCoreApplication>
#include <QStringList>

namespace lumaro {

namespace {

/// Of Chromium (net_error_list.h).
enum ErrorCode {
    TimedOut = -7,
    ConnectionFailed = -104,
    NameNotResolved = -105,
    InternetDisconnected = -106,
    TunnelConnectionFailed = -111,
    ProxyConnectionFailed = -130,
};

/// What the engine would say if it connected by itself.
int errorCodeOf(ConnectionFailure failure)
{
    switch (failure) {
    case ConnectionFailure::Offline:
        return InternetDisconnected;
    case ConnectionFailure::NoSuchServer:
        return NameNotResolved;
    case ConnectionFailure::Unreachable:
        return ConnectionFailed;
    case ConnectionFailure::TooSlow:
        return TimedOut;
    case ConnectionFailure::Proxy:
        return ProxyConnectionFailed;
    }
    Q_UNREACHABLE();
}

/// Why the proxy of this process could not connect, if that is what the engine tells of: for a
/// tunnel it only knows that there is none, and otherwise it takes the proxy's answer for the
/// server's.
std::optional<ConnectionFailure> failureBehind(const QWebEngineLoadingInfo &info)
{
    constexpr int badGateway = 502;
    constexpr int gatewayTimeout = 504;
    const int code = info.errorCode();
    const bool isAnswer = info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain;
    const bool mayBeTheProxys = isAnswer
        ? info.url().scheme() == u"http" && (code == badGateway || code == gatewayTimeout)
        : code == TunnelConnectionFailed;
    const ConnectionFailures *const failures = ConnectionFailures::ofApplicationProxy();
    return mayBeTheProxys && failures ? failures->of(info.url()) : std::nullopt;
}

} // namespace

bool isForPages(const QUrl &url)
{
    static const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"),
                                     QStringLiteral("about"), QStringLiteral("blob"),
                                     QStringLiteral("data")};
    return schemes.contains(url.scheme());
}

bool isErrorPage(const QWebEngineLoadingInfo &info)
{
    return info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain
        && !failureBehind(info);
}

QString descriptionOf(const QWebEngineLoadingInfo &info)
{
    const auto failure = failureBehind(info);
    switch (failure ? errorCodeOf(*failure) : info.errorCode()) {
    case NameNotResolved:
    case -137:
        return QCoreApplication::translate("PageErrors", "There is no server of that name.");
    case InternetDisconnected:
        return QCoreApplication::translate("PageErrors",
                                           "This computer is not connected to the internet.");
    case -100:
    case -101:
    case -102:
    case ConnectionFailed:
    case -109:
        return QCoreApplication::translate("PageErrors", "The server cannot be reached.");
    case TimedOut:
    case -118:
        return QCoreApplication::translate("PageErrors", "The server takes too long to answer.");
    case TunnelConnectionFailed:
    case -115:
    case -120:
    case ProxyConnectionFailed:
        return QCoreApplication::translate(
            "PageErrors", "The proxy cannot be reached, or does not do what it is asked.");
    case -20:
    case -27:
        return QCoreApplication::translate("PageErrors",
                                           "The ad blocker does not let this page through.");
    case -310:
        return QCoreApplication::translate("PageErrors", "The page leads round in circles.");
    case -324:
        return QCoreApplication::translate("PageErrors", "The server sent nothing.");
    default:
        break;
    }
    if (info.errorDomain() == QWebEngineLoadingInfo::CertificateErrorDomain)
        return QCoreApplication::translate("PageErrors", "The server could not prove who it is.");
    return QCoreApplication::translate("PageErrors", "The page could not be loaded (%1).")
        .arg(info.errorString());
}

} // namespace lumaro
