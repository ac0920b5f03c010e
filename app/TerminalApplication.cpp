#include "app/TerminalApplication.h"

#include "player/MediaSources.h"

#include <QCoreApplication>
#include <QDir>

namespace lumaro {

Task<std::optional<QUrl>> TerminalApplication::NoFilePanels::chooseFile(OpenPanelRequest,
                                                                        std::stop_token)
{
    co_return std::nullopt;
}

Task<std::optional<QUrl>> TerminalApplication::NoFilePanels::chooseNewFile(SavePanelRequest,
                                                                           std::stop_token)
{
    co_return std::nullopt;
}

Task<std::optional<SavePanelChoice>>
TerminalApplication::NoFilePanels::chooseNewFile(SavePanelRequest, SavePanelAccessory,
                                                 std::stop_token)
{
    co_return std::nullopt;
}

Task<std::optional<QUrl>> TerminalApplication::NoFilePanels::chooseFolder(FolderPanelRequest,
                                                                          std::stop_token)
{
    co_return std::nullopt;
}

void TerminalApplication::NoWorkspace::activateFileViewer(const QList<QUrl> &) { }

void TerminalApplication::NoWorkspace::openScreenCaptureSettings() { }

void TerminalApplication::ClientRoute::setProxyConfigurations(
    const QList<ProxyConfiguration> &configurations)
{
    m_http.setProxy(configurations.isEmpty() ? std::nullopt
                                             : std::optional(configurations.first()));
}

TerminalApplication::TerminalApplication(const Folders &folders)
    : m_http(QByteArrayLiteral("Lumaro/" LUMARO_VERSION))
    , m_defaults(folders.settings)
    , m_proxyRoute(m_http)
    , m_proxy(m_defaults, m_scheduler, m_proxyRoute)
    , m_downloads(
          {m_http, m_scheduler, m_scheduler, m_defaults, m_panels, m_workspace, folders.downloads})
    , m_download(m_downloads, m_scheduler, m_terminal)
{
}

int TerminalApplication::download(const QString &address, const std::optional<QString> &folder,
                                  const std::optional<QString> &name)
{
    const std::optional<QUrl> url = remoteUrl(normalizedRemoteAddress(address));
    if (!url) {
        m_terminal.say(QCoreApplication::translate("TerminalApplication",
                                                   "Enter a valid HTTP or HTTPS address."));
        return 1;
    }
    if (folder)
        m_downloads.setSaveFolder(QUrl::fromLocalFile(QDir(*folder).absolutePath()));
    QObject::connect(&m_download, &TerminalDownload::finished, qApp, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    m_download.start(*url, name);
    return QCoreApplication::exec();
}

} // namespace lumaro
