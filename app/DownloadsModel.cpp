#include "app/DownloadsModel.h"

#include <QDir>

namespace lumaro {

namespace {

bool isStream(const QUrl &url)
{
    return (url.scheme() == u"http" || url.scheme() == u"https") && pathExtension(url) == u"m3u8";
}

/// The title, unless it is the one for want of a better.
std::optional<QString> nameOf(const QString &title)
{
    return title == u"Lumaro" ? std::nullopt : std::optional(title);
}

} // namespace

DownloadsModel::DownloadsModel(M3U8DownloadManager &manager, PlayerModel &player, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
    , m_player(player)
    , m_list(manager)
{
    connect(&player, &PlayerModel::currentURLChanged, this, &DownloadsModel::update);
    connect(&manager, &M3U8DownloadManager::jobChanged, this, &DownloadsModel::update);
    connect(&manager, &M3U8DownloadManager::saveFolderChanged, this,
            &DownloadsModel::saveFolderPathChanged);
    connect(&manager, &M3U8DownloadManager::errorMessageChanged, this,
            &DownloadsModel::announceError);
    update();
}

void DownloadsModel::setPanelShown(bool shown)
{
    if (m_panelShown == shown)
        return;
    m_panelShown = shown;
    Q_EMIT panelShownChanged();
}

QString DownloadsModel::saveFolderPath() const
{
    return QDir::toNativeSeparators(m_manager.saveFolder().toLocalFile());
}

void DownloadsModel::downloadStream()
{
    if (m_canDownloadStream) {
        m_manager.start(m_player.currentURL(), nameOf(m_player.itemTitle()));
        setPanelShown(true);
    } else if (isStream(m_player.currentURL())) {
        setPanelShown(true);
    } else {
        m_player.showToast(tr("Only an HLS stream that plays can be downloaded."),
                           PlayerModel::toastDuration);
    }
}

void DownloadsModel::update()
{
    const QUrl &url = m_player.currentURL();
    const bool can =
        isStream(url) && !m_manager.jobs().value(M3U8DownloadManager::keyOf(url)).isActive;
    if (std::exchange(m_canDownloadStream, can) != can)
        Q_EMIT canDownloadStreamChanged();
}

void DownloadsModel::announceError()
{
    // The panel shows it until it is dismissed.
    if (!m_panelShown && !m_manager.errorMessage().isEmpty())
        m_player.showToast(m_manager.errorMessage(), PlayerModel::toastDuration);
}

} // namespace lumaro
