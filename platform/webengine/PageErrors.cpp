#include "platform/webengine/PageErrors.h"

#include <QStringList>

namespace lumaro {

bool isForPages(const QUrl &url)
{
    static const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"),
                                     QStringLiteral("about"), QStringLiteral("blob"),
                                     QStringLiteral("data")};
    return schemes.contains(url.scheme());
}

QString descriptionOf(const QWebEngineLoadingInfo &info)
{
    switch (info.errorCode()) {
    case -105:
    case -137:
        return QStringLiteral("There is no server of that name.");
    case -106:
        return QStringLiteral("This computer is not connected to the internet.");
    case -100:
    case -101:
    case -102:
    case -104:
    case -109:
        return QStringLiteral("The server cannot be reached.");
    case -7:
    case -118:
        return QStringLiteral("The server takes too long to answer.");
    case -111:
    case -115:
    case -120:
    case -130:
        // Without a proxy too, the engine goes through the relay.
        return QStringLiteral("The server cannot be reached, or not through the proxy.");
    case -20:
    case -27:
        return QStringLiteral("The ad blocker does not let this page through.");
    case -310:
        return QStringLiteral("The page leads round in circles.");
    case -324:
        return QStringLiteral("The server sent nothing.");
    default:
        break;
    }
    if (info.errorDomain() == QWebEngineLoadingInfo::CertificateErrorDomain)
        return QStringLiteral("The server could not prove who it is.");
    return u"The page could not be loaded (" + info.errorString() + u").";
}

} // namespace lumaro
