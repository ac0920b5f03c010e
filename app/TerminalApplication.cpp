#include "app/TerminalApplication.h"

#include <QCoreApplication>
#include <QDir>

namespace lumaro {

TerminalApplication::TerminalApplication(const Application::Folders &folders)
    : m_http(QByteArrayLiteral("Lumaro/" LUMARO_VERSION))
    , m_defaults(folders.settings)
    , m_proxyRoute(m_http, nullptr)
    , m_proxy(m_defaults, m_scheduler, m_proxyRoute)
    , m_downloads({m_http, m_scheduler, m_defaults, m_panels, m_workspace, folders.downloads})
    , m_download(m_downloads, m_scheduler, m_terminal)
{
}

int TerminalApplication::download(const QString &address, const std::optional<QString> &folder,
                                  const std::optional<QString> &name)
{
    const std::optional<QUrl> url = remoteUrl(normalizedRemoteAddress(address));
    if (!url) {
        m_terminal.say(QStringLiteral("Enter a valid HTTP or HTTPS address."));
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
