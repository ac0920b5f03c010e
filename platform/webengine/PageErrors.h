#pragma once

#include <QString>
#include <QUrl>
#include <QWebEngineLoadingInfo>

namespace lumaro {

/// What the web itself is made of, and what a page makes of it. Files and other programs are not
/// for pages to reach.
bool isForPages(const QUrl &url);

/// Whether there is a page, the server's own, though it tells of an error.
bool isErrorPage(const QWebEngineLoadingInfo &info);

/// Why a page could not be loaded (net_error_list.h of Chromium), as a sentence for the user.
QString descriptionOf(const QWebEngineLoadingInfo &info);

} // namespace lumaro
