#pragma once

#include "finder/SnifferNetworkMonitor.h"
#include "platform/PageView.h"

#include <QPointer>

namespace lumaro {

class SnifferSavedWebsiteStore;

/// The browser of one tab: what its address field and its buttons show and do. Main thread.
class SnifferManager : public QObject
{
    Q_OBJECT
    /// The text of the address field.
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY addressChanged)
    /// The page that the view shows or loads; empty for none.
    Q_PROPERTY(QUrl shownPage READ shownPage NOTIFY shownPageChanged)
    Q_PROPERTY(QString pageTitle READ pageTitle NOTIFY pageTitleChanged)
    /// There is something to be seen, for which the browser needs a view.
    Q_PROPERTY(bool wantsView READ wantsView NOTIFY wantsViewChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY navigationStateChanged)
    Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY navigationStateChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    /// Shown below the address field; empty for nothing.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(lumaro::SnifferNetworkMonitor *networkMonitor READ networkMonitor CONSTANT)

public:
    /// `websites` outlives the browser; visits are recorded there.
    explicit SnifferManager(SnifferSavedWebsiteStore &websites, WallClock clock = systemClock(),
                            QObject *parent = nullptr);

    const QString &address() const { return m_address; }
    void setAddress(const QString &text);
    const QUrl &shownPage() const { return m_shownPage; }
    const QString &pageTitle() const { return m_pageTitle; }
    bool wantsView() const { return m_wantsView; }
    bool canGoBack() const { return m_canGoBack; }
    bool canGoForward() const { return m_canGoForward; }
    bool isLoading() const { return m_isLoading; }
    const QString &errorMessage() const { return m_errorMessage; }
    SnifferNetworkMonitor *networkMonitor() { return &m_networkMonitor; }

    PageView *webView() const { return m_webView; }
    /// The tab's view, which may go before the browser does. It loads what waits for it.
    void setWebView(PageView *view);

    /// Goes where the address field says.
    Q_INVOKABLE void go();
    Q_INVOKABLE void navigate(const QUrl &url);
    Q_INVOKABLE void goBack();
    Q_INVOKABLE void goForward();
    Q_INVOKABLE void reload();
    Q_INVOKABLE void stopLoading();
    /// Leaves the page, which must fall silent, for an empty one.
    Q_INVOKABLE void clearAddress();
    /// Has everything in the page pause that plays.
    void pauseAllMedia();

    // What the view tells.

    /// It begins to load `url`, or has ended; `title` is the page's, once it is known.
    void update(const QUrl &url, bool loading, const std::optional<QString> &title);
    /// It is at `url` now without having loaded anything.
    void follow(const QUrl &url);
    void refreshNavigationState();
    void setPageTitle(const QString &title);
    /// Loading ended with an error, whose description is for the user.
    void fail(const QUrl &url, const QString &description);

Q_SIGNALS:
    void addressChanged();
    void shownPageChanged();
    void pageTitleChanged();
    void wantsViewChanged();
    void navigationStateChanged();
    void isLoadingChanged();
    void errorMessageChanged();

private:
    void load(const QUrl &url);
    void setShownPage(const QUrl &url);
    void setIsLoading(bool loading);
    void setErrorMessage(const QString &message);

    SnifferSavedWebsiteStore &m_websites;
    SnifferNetworkMonitor m_networkMonitor;
    QPointer<PageView> m_webView;
    /// Where to go once there is a view; empty for nowhere.
    QUrl m_automaticNavigation;
    QString m_address;
    QUrl m_shownPage;
    QString m_pageTitle;
    bool m_wantsView = false;
    bool m_canGoBack = false;
    bool m_canGoForward = false;
    bool m_isLoading = false;
    QString m_errorMessage;
};

} // namespace lumaro
