#include "platform/webengine/PageErrors.h"

#include <QCoreApplication>
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
        return QCoreApplication::translate("PageErrors", "There is no server of that name.");
    case -106:
        return QCoreApplication::translate("PageErrors",
                                           "This computer is not connected to the internet.");
    case -100:
    case -101:
    case -102:
    case -104:
    case -109:
        return QCoreApplication::translate("PageErrors", "The server cannot be reached.");
    case -7:
    case -118:
        return QCoreApplication::translate("PageErrors", "The server takes too long to answer.");
    case -111:
    case -115:
    case -120:
    case -130:
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
