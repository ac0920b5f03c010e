#pragma once

#include "platform/WebView.h"

namespace lumaro {

/// A web view as a browser drives it. Main thread; nothing blocks.
class PageView : public WebView
{
    Q_OBJECT

public:
    using WebView::WebView;

    virtual void load(const QUrl &url) = 0;
    virtual void stopLoading() = 0;
    /// Leaves the page for one with nothing in it.
    virtual void loadEmptyPage() = 0;

    virtual bool canGoBack() const = 0;
    virtual bool canGoForward() const = 0;
    virtual void goBack() = 0;
    virtual void goForward() = 0;
};

} // namespace lumaro
