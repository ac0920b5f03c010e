#pragma once

#include "app/Application.h"
#include "app/TerminalDownload.h"
#include "platform/posix/PosixTerminal.h"
#include "platform/qt/QtWorkspace.h"

namespace lumaro {

/// The composition root of a run without windows.
class TerminalApplication
{
public:
    explicit TerminalApplication(const Application::Folders &folders);

    /// Saves the stream at `address` into `folder`, or without one into the user's save folder.
    /// Runs the event loop; the process's exit status.
    int download(const QString &address, const std::optional<QString> &folder,
                 const std::optional<QString> &name);

private:
    // In the order of who needs whom.
    QtScheduler m_scheduler;
    CurlHttpClient m_http;
    FileUserDefaults m_defaults;
    QuickFilePanels m_panels;
    QtWorkspace m_workspace;
    ProxyRoute m_proxyRoute;
    SnifferProxyManager m_proxy;
    PosixTerminal m_terminal;
    M3U8DownloadManager m_downloads;
    TerminalDownload m_download;
};

} // namespace lumaro
