#pragma once

#include "platform/WebView.h"

#include <QList>
#include <QPointer>

namespace lumaro {

/// The web views that a setting reaches, held weakly. Main thread.
class WebViewRegistry
{
public:
    /// False when it is there already.
    bool add(WebView *view);
    /// Drops views that are gone.
    void clean();

    /// Those that are left, as they are now; what is done to one may end another.
    QList<QPointer<WebView>> views();
    /// Reloads every view that shows a page.
    void reloadPages();
    static void reloadPage(WebView &view);

private:
    QList<QPointer<WebView>> m_views;
};

} // namespace lumaro
