#include "platform/HttpClient.h"

namespace lumaro {

QString HttpError::description() const
{
    switch (kind) {
    case Kind::Cancelled:
        return QStringLiteral("The request was cancelled.");
    case Kind::TooLarge:
        return QStringLiteral("The server's answer is too large.");
    case Kind::TimedOut:
        return QStringLiteral("The server did not answer in time.");
    case Kind::Unreachable:
        return QStringLiteral("The server could not be reached.");
    case Kind::TooManyRedirects:
        return QStringLiteral("The server redirected the request too many times.");
    case Kind::Broken:
        return QStringLiteral("The connection to the server was lost.");
    case Kind::UnsupportedAddress:
        return QStringLiteral("The address is not an HTTP or HTTPS address.");
    case Kind::NotTaken:
        return QStringLiteral("The received data could not be stored.");
    }
    Q_UNREACHABLE();
}

} // namespace lumaro
