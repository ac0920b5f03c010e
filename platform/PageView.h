#pragma once

#include "platform/NavigationAction.h"
#include "platform/WebView.h"

#include <QVariant>

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
    /// Pauses what plays in the page and in its frames.
    virtual void pauseAllMediaPlayback() = 0;
    virtual void goBack() = 0;
    virtual void goForward() = 0;

    /// For every frame that is loaded from now on, before the page's own scripts.
    virtual void setUserScripts(const QStringList &scripts) = 0;
    /// Called for whatever a page asks for; without one, pages go where they like, though never to
    /// other schemes than a page of the web needs.
    virtual void setNavigationPolicy(NavigationPolicy policy) = 0;

Q_SIGNALS:
    /// Also without loading anything, within a page.
    void urlChanged();
    void historyChanged();
    void loadStarted();
    /// Something of what is loaded has come, or the server wants to know first who the user is.
    void answerBegan();
    /// The page is there, with its title, as good as the server has it.
    void loadFinished(const QString &title);
    /// The user or the page stopped it, or it became a download.
    void loadStopped();
    /// There is no page; `description` is for the user.
    void loadFailed(const QString &description);
    void titleChanged(const QString &title);
    /// The page's own window is not to be opened; only its address is told.
    void newWindowRequested(const QUrl &url);
    /// The page or a frame of it answered with this media type, which the view does not show.
    void responseReceived(const QUrl &url, const QString &contentType);
    /// The page, or a worker of its site, loads data or media from there; maybe the page of another
    /// view of the same site.
    void dataRequested(const QUrl &url);
    /// Any page can have this sent, with whatever it likes.
    void messageReceived(const QString &handler, const QVariant &body);
};

} // namespace lumaro
