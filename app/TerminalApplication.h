#pragma once

#include "app/Folders.h"
#include "app/TerminalDownload.h"
#include "finder/SnifferProxyManager.h"
#include "platform/FilePanels.h"
#include "platform/Workspace.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/qt/FileUserDefaults.h"
#include "platform/qt/QtScheduler.h"

namespace lumaro {

/// The composition root of a run without windows.
class TerminalApplication
{
public:
    explicit TerminalApplication(const Folders &folders);

    /// Saves the stream at `address` into `folder`, or without one into the user's save folder.
    /// Runs the event loop; the process's exit status.
    int download(const QString &address, const std::optional<QString> &folder,
                 const std::optional<QString> &name);

private:
    /// Nobody is there to choose anything.
    class NoFilePanels final : public FilePanels
    {
    public:
        Task<std::optional<QUrl>> chooseFile(OpenPanelRequest request,
                                             std::stop_token stop) override;
        Task<std::optional<QUrl>> chooseNewFile(SavePanelRequest request,
                                                std::stop_token stop) override;
        Task<std::optional<SavePanelChoice>> chooseNewFile(SavePanelRequest request,
                                                           SavePanelAccessory accessory,
                                                           std::stop_token stop) override;
        Task<std::optional<QUrl>> chooseFolder(FolderPanelRequest request,
                                               std::stop_token stop) override;
    };
    class NoWorkspace final : public Workspace
    {
    public:
        void activateFileViewer(const QList<QUrl> &files) override;
        void openInBrowser(const QUrl &) override { }
        void openScreenCaptureSettings() override;
    };
    /// Sends the HTTP client's requests through the proxy.
    class ClientRoute final : public ProxyConfigurationTarget
    {
    public:
        explicit ClientRoute(CurlHttpClient &http)
            : m_http(http)
        {
        }
        void setProxyConfigurations(const QList<ProxyConfiguration> &configurations) override;

    private:
        CurlHttpClient &m_http;
    };

    // In the order of who needs whom. Whoever stopped a download has waited for its folder already.
    QtScheduler m_scheduler{{.patience = std::chrono::seconds(1)}};
    CurlHttpClient m_http;
    FileUserDefaults m_defaults;
    NoFilePanels m_panels;
    NoWorkspace m_workspace;
    ClientRoute m_proxyRoute;
    SnifferProxyManager m_proxy;
    PosixTerminal m_terminal;
    M3U8DownloadManager m_downloads;
    TerminalDownload m_download;
};

} // namespace lumaro
