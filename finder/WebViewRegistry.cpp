#include "finder/WebViewRegistry.h"

namespace lumaro {

bool WebViewRegistry::add(WebView *view)
{
    clean();
    if (m_views.contains(view))
        return false;
    m_views.append(view);
    return true;
}

void WebViewRegistry::clean()
{
    m_views.removeIf([](const QPointer<WebView> &view) { return view.isNull(); });
}

QList<QPointer<WebView>> WebViewRegistry::views()
{
    clean();
    return m_views;
}

void WebViewRegistry::reloadPages()
{
    const auto all = views();
    for (const QPointer<WebView> &view : all) {
        if (view)
            reloadPage(*view);
    }
}

void WebViewRegistry::reloadPage(WebView &view)
{
    if (isPage(view.url()))
        view.reload();
}

} // namespace lumaro
