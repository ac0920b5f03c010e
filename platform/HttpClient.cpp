#include "platform/HttpClient.h"

#include <QCoreApplication>

namespace lumaro {

QString HttpError::description() const
{
    switch (kind) {
    case Kind::Cancelled:
        return QCoreApplication::translate("HttpError", "The request was cancelled.");
    case Kind::TooLarge:
        return QCoreApplication::translate("HttpError", "The server's answer is too large.");
    case Kind::TimedOut:
        return QCoreApplication::translate("HttpError", "The server did not answer in time.");
    case Kind::Unreachable:
        return QCoreApplication::translate("HttpError", "The server could not be reached.");
    case Kind::TooManyRedirects:
        return QCoreApplication::translate("HttpError",
                                           "The server redirected the request too many times.");
    case Kind::Broken:
        return QCoreApplication::translate("HttpError", "The connection to the server was lost.");
    case Kind::UnsupportedAddress:
        return QCoreApplication::translate("HttpError",
                                           "The address is not an HTTP or HTTPS address.");
    case Kind::NotTaken:
        return QCoreApplication::translate("HttpError", "The received data could not be stored.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
