#pragma once

#include "finder/SnifferBlockListModel.h"
#include "finder/SnifferBrowserTabs.h"
#include "finder/SnifferDetectedStreamsModel.h"
#include "finder/SnifferProxySettingsModel.h"
#include "finder/SnifferWebListModel.h"
#include "finder/SnifferWebView.h"
#include "platform/DelayedTask.h"
#include "platform/NotificationCenter.h"

#include <functional>

namespace lumaro {

/// Everything in the stream finder's window: tabs, toolbar and the detected-streams panel. Main
/// thread.
class SnifferViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(lumaro::SnifferBrowserTabs *tabs READ tabs CONSTANT)
    Q_PROPERTY(lumaro::SnifferDetectedStreamsModel *streams READ streams CONSTANT)
    Q_PROPERTY(lumaro::SnifferBlockListModel *blockList READ blockList CONSTANT)
    Q_PROPERTY(lumaro::SnifferProxySettingsModel *proxySettings READ proxySettings CONSTANT)
    Q_PROPERTY(lumaro::SnifferWebListModel *webList READ webList CONSTANT)
    Q_PROPERTY(lumaro::M3U8DownloadManager *downloads READ downloads CONSTANT)
    Q_PROPERTY(QStringList messageHandlers READ messageHandlers CONSTANT)

    Q_PROPERTY(bool isStreamsExpanded READ isStreamsExpanded WRITE setStreamsExpanded NOTIFY
                   isStreamsExpandedChanged)
    /// What a click on the panel's header does.
    Q_PROPERTY(QString toggleHelp READ toggleHelp NOTIFY isStreamsExpandedChanged)

    /// The window is there for the user to see. The window tells.
    Q_PROPERTY(bool isShown MEMBER m_isShown)
    /// Some panel for files is open, whoever asked for it, so that there cannot be another. The
    /// window tells.
    Q_PROPERTY(bool isPanelOpen MEMBER m_isPanelOpen WRITE setPanelOpen)

    // The toolbar.
    Q_PROPERTY(bool isBlocking READ isBlocking NOTIFY toolbarChanged)
    Q_PROPERTY(QString adBlockerHelp READ adBlockerHelp NOTIFY toolbarChanged)
    Q_PROPERTY(QString blockListHelp READ blockListHelp CONSTANT)
    Q_PROPERTY(bool isProxied READ isProxied NOTIFY toolbarChanged)
    Q_PROPERTY(QString proxyHelp READ proxyHelp NOTIFY toolbarChanged)
    Q_PROPERTY(QString proxySettingsHelp READ proxySettingsHelp CONSTANT)
    /// The selected tab shows a page that could be in the web list.
    Q_PROPERTY(bool canStar READ canStar NOTIFY toolbarChanged)
    Q_PROPERTY(bool isStarred READ isStarred NOTIFY toolbarChanged)
    Q_PROPERTY(QString starHelp READ starHelp NOTIFY toolbarChanged)
    Q_PROPERTY(QString webListHelp READ webListHelp CONSTANT)

public:
    /// Plays a stream in the main player.
    using OnOpenStream = std::function<void(const QUrl &url, const QString &name)>;

    struct Parts
    {
        SnifferAdBlocker &blocker;
        SnifferProxyManager &proxy;
        SnifferSavedWebsiteStore &websites;
        LocalM3UStore &library;
        M3U8DownloadManager &downloads;
        NotificationCenter &notifications;
        FilePanels &panels;
        Scheduler &scheduler;
        OnOpenStream onOpenStream;
    };

    /// The parts outlive the model.
    explicit SnifferViewModel(const Parts &parts, QObject *parent = nullptr);
    ~SnifferViewModel() override;

    SnifferBrowserTabs *tabs() { return &m_tabs; }
    SnifferDetectedStreamsModel *streams() { return &m_streams; }
    SnifferBlockListModel *blockList() { return &m_blockList; }
    SnifferProxySettingsModel *proxySettings() { return &m_proxySettings; }
    SnifferWebListModel *webList() { return &m_webList; }
    M3U8DownloadManager *downloads() { return &m_parts.downloads; }
    static QStringList messageHandlers();

    bool isStreamsExpanded() const { return m_isStreamsExpanded; }
    void setStreamsExpanded(bool expanded);
    QString toggleHelp() const;
    bool isBlocking() const { return m_parts.blocker.isEnabled(); }
    QString adBlockerHelp() const;
    static QString blockListHelp();
    bool isProxied() const { return m_parts.proxy.isEnabled(); }
    QString proxyHelp() const;
    static QString proxySettingsHelp();
    bool canStar() const;
    bool isStarred() const;
    QString starHelp() const;
    static QString webListHelp();

    /// Makes `view` the view of the tab of `manager`, for as long as there is one.
    Q_INVOKABLE void attach(lumaro::SnifferManager *manager, lumaro::PageView *view);

    Q_INVOKABLE void toggleBlocking();
    Q_INVOKABLE void toggleProxy();
    Q_INVOKABLE void toggleStar();
    /// Opens an address of the web list.
    Q_INVOKABLE void openWebsite(const QString &address, bool inNewTab);
    Q_INVOKABLE void openInNewTab(const QUrl &url);

    /// A page wants to have something saved that is not shown. True for a stream, which is listed
    /// instead, or the user told why not.
    Q_INVOKABLE bool takesDownload(lumaro::PageView *view, const QUrl &url,
                                   const QString &mimeType);
    /// Asks the user where a file is to be that is being saved elsewhere meanwhile. Returns the
    /// saving's number.
    Q_INVOKABLE int beginSaving(const QString &proposedName);
    /// Whether a saving is still wanted.
    Q_INVOKABLE bool isSaving(int saving) const { return m_savings.contains(saving); }
    /// Whether it is known where a saving's file goes.
    Q_INVOKABLE bool hasPlace(int saving) const { return !m_savings.value(saving).place.isEmpty(); }
    /// The file is there; it moves to its place once there is one.
    Q_INVOKABLE void finishSaving(int saving, const QString &path);
    /// It will not be there, for a reason that the user is told unless it is empty.
    Q_INVOKABLE void abandonSaving(int saving, const QString &reason);
    /// Asks the user for a file for a page. Returns the number that uploadChosen() bears, which
    /// comes later.
    Q_INVOKABLE int beginUpload();
    void setPanelOpen(bool open);
    /// What a key's text does anywhere in the window but where one types; false for nothing.
    Q_INVOKABLE bool takeKey(const QString &text);
    /// Tells the user, below the pages.
    Q_INVOKABLE void tell(const QString &text) { Q_EMIT notice(text); }

Q_SIGNALS:
    void isStreamsExpandedChanged();
    void toolbarChanged();
    void notice(const QString &text);
    /// The user does not want it saved.
    void savingCancelled(int saving);
    /// The user has said where it goes.
    void placeChosen(int saving);
    /// The user has chosen a file for a page; empty for none.
    void uploadChosen(int upload, const QString &path);

private:
    void selectTab();
    void tellDownloadError();
    Task<> choosePlaces();
    Task<> chooseUpload(int upload);
    Task<> moveSaved(int saving);

    Parts m_parts;
    SnifferBrowserTabs m_tabs;
    SnifferDetectedStreamsModel m_streams;
    SnifferBlockListModel m_blockList;
    SnifferProxySettingsModel m_proxySettings;
    SnifferWebListModel m_webList;
    bool m_isStreamsExpanded = true;
    /// The tab whose changes the toolbar follows.
    QPointer<SnifferManager> m_tab;
    struct Saving
    {
        QString proposedName{};
        /// What has been saved; empty while it is not complete.
        QString path{};
        /// Where it belongs; empty while the user has not said.
        QString place{};
    };
    QHash<int, Saving> m_savings;
    int m_lastSaving = 0;
    int m_lastUpload = 0;
    /// The savings whose places are still to be asked for, in order.
    QList<int> m_placeless;
    bool m_isAsking = false;
    bool m_isPanelOpen = false;
    bool m_isShown = false;
    DelayedTask m_panelClosed{m_parts.scheduler};
    std::stop_source m_lifetime;
};

} // namespace lumaro
