#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QUrl>

#include <chrono>

namespace lumaro {

/// What came back, as it came: redirects are not followed and content encodings stay.
struct Fetched
{
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    int status = 0;
    QByteArray body;
};

/// One GET without proxies. Events of the calling thread are handled meanwhile, so an application
/// under test goes on running. When `timeout` passes, the error is OperationCanceledError and the
/// body what has arrived so far.
Fetched fetch(const QUrl &url, std::chrono::milliseconds timeout = std::chrono::seconds(10));

} // namespace lumaro
