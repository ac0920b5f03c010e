#include "finder/SnifferViewModel.h"

#include "finder/HLSDetector.h"
#include "finder/ToolbarTexts.h"
#include "finder/WebAddress.h"
#include "platform/AtomicFile.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace lumaro {

namespace {

/// Files that wait to be asked for.
constexpr qsizetype mostPlaceless = 4;

} // namespace

SnifferViewModel::SnifferViewModel(const Parts &parts, QObject *parent)
    : QObject(parent)
    , m_parts(parts)
    , m_tabs(parts.websites)
    , m_streams(parts.library, parts.downloads)
    , m_blockList(parts.blocker)
    , m_proxySettings(parts.proxy)
    , m_webList(parts.websites)
{
    connect(&parts.blocker, &SnifferAdBlocker::isEnabledChanged, this,
            &SnifferViewModel::toolbarChanged);
    connect(&parts.proxy, &SnifferProxyManager::isEnabledChanged, this,
            &SnifferViewModel::toolbarChanged);
    connect(&parts.websites, &SnifferSavedWebsiteStore::websitesChanged, this,
            &SnifferViewModel::toolbarChanged);
    connect(&parts.downloads, &M3U8DownloadManager::errorMessageChanged, this,
            &SnifferViewModel::tellDownloadError);
    connect(&m_tabs, &SnifferBrowserTabs::selectedTabChanged, this, &SnifferViewModel::selectTab);
    connect(&m_streams, &SnifferDetectedStreamsModel::playRequested, this, m_parts.onOpenStream);
    connect(&m_streams, &SnifferDetectedStreamsModel::notice, this, &SnifferViewModel::notice);
    connect(&m_streams, &SnifferDetectedStreamsModel::libraryRequested, this, [this] {
        m_parts.notifications.post(QString::fromUtf16(notification::openLocalM3UTab));
    });
    selectTab();
}

SnifferViewModel::~SnifferViewModel()
{
    m_lifetime.request_stop();
}

QStringList SnifferViewModel::messageHandlers()
{
    return {QString::fromUtf16(resourceMessageHandler)};
}

void SnifferViewModel::selectTab()
{
    SnifferManager *const tab = m_tabs.selectedTab();
    if (m_tab != tab) {
        if (m_tab)
            m_tab->disconnect(this);
        m_tab = tab;
        if (m_tab)
            connect(m_tab, &SnifferManager::shownPageChanged, this,
                    &SnifferViewModel::toolbarChanged);
        m_streams.setMonitor(m_tab ? m_tab->networkMonitor() : nullptr);
    }
    Q_EMIT toolbarChanged();
}

void SnifferViewModel::attach(SnifferManager *manager, PageView *view)
{
    if (manager && view)
        new SnifferWebView(*view, *manager, {m_parts.blocker, m_parts.proxy, m_parts.scheduler});
}

// The toolbar

QString SnifferViewModel::adBlockerHelp() const
{
    return adBlockerToolTip(isBlocking());
}

QString SnifferViewModel::blockListHelp()
{
    return blockListToolTip();
}

QString SnifferViewModel::proxyHelp() const
{
    return proxyToolTip(isProxied());
}

QString SnifferViewModel::proxySettingsHelp()
{
    return proxySettingsToolTip();
}

bool SnifferViewModel::canStar() const
{
    return m_tab && !m_tab->shownPage().isEmpty();
}

bool SnifferViewModel::isStarred() const
{
    return canStar()
        && m_parts.websites.isFavorite(m_tab->shownPage().toString(QUrl::FullyEncoded));
}

QString SnifferViewModel::starHelp() const
{
    return starToolTip(isStarred());
}

QString SnifferViewModel::webListHelp()
{
    return webListToolTip();
}

void SnifferViewModel::toggleBlocking()
{
    m_parts.blocker.setEnabled(!isBlocking());
}

void SnifferViewModel::toggleProxy()
{
    m_proxySettings.setEnabled(!isProxied());
}

void SnifferViewModel::toggleStar()
{
    if (canStar())
        m_parts.websites.toggleFavorite(m_tab->shownPage().toString(QUrl::FullyEncoded),
                                        m_tab->pageTitle());
}

void SnifferViewModel::openWebsite(const QString &address, bool inNewTab)
{
    const auto url = webUrl(address);
    if (!url)
        return;
    if (inNewTab || !m_tab)
        m_tabs.addTab(*url);
    else
        m_tab->navigate(*url);
}

void SnifferViewModel::openInNewTab(const QUrl &url)
{
    openWebsite(url.toString(QUrl::FullyEncoded), true);
}

// The panel

void SnifferViewModel::setStreamsExpanded(bool expanded)
{
    if (std::exchange(m_isStreamsExpanded, expanded) != expanded)
        Q_EMIT isStreamsExpandedChanged();
}

QString SnifferViewModel::toggleHelp() const
{
    return m_isStreamsExpanded ? tr("Collapse Detected Streams (-)")
                               : tr("Expand Detected Streams (+)");
}

void SnifferViewModel::tellDownloadError()
{
    // Otherwise the main window does.
    if (m_isShown && !m_parts.downloads.errorMessage().isEmpty())
        Q_EMIT notice(m_parts.downloads.errorMessage());
}

// Files

bool SnifferViewModel::takesDownload(PageView *view, const QUrl &url, const QString &mimeType)
{
    if (view)
        Q_EMIT view->responseReceived(url, mimeType);
    if (!HLSDetector::inspect(url, mimeType, std::nullopt).isHLS)
        return false;
    SnifferManager *const tab = m_tabs.tabOf(view);
    if (tab && tab->networkMonitor()->indexOf(url) < 0)
        Q_EMIT notice(tr("The page loads more streams than can be listed."));
    return true;
}

int SnifferViewModel::beginSaving(const QString &proposedName)
{
    // A server's name for it is only a name.
    const QString name = QFileInfo(proposedName).fileName();
    const int saving = ++m_lastSaving;
    // A page may ask as often as it likes, but the user answers one after the other.
    if (m_placeless.size() >= mostPlaceless) {
        Q_EMIT notice(
            SnifferViewModel::tr("The page wants to save more files than can be asked for."));
        return saving;
    }
    m_savings.insert(saving, {.proposedName = name.isEmpty() ? QStringLiteral("download") : name});
    m_placeless.append(saving);
    choosePlaces();
    return saving;
}

Task<> SnifferViewModel::choosePlaces()
{
    if (std::exchange(m_isAsking, true))
        co_return;
    const std::stop_token stop = m_lifetime.get_token();
    // While another panel is open, what is to be saved waits for its end.
    while (!m_isPanelOpen && !m_placeless.isEmpty()) {
        const int saving = m_placeless.takeFirst();
        const auto found = m_savings.constFind(saving);
        if (found == m_savings.cend())
            continue;
        const SavePanelRequest panel{.title = SnifferViewModel::tr("Save File"),
                                     .prompt = SnifferViewModel::tr("Save"),
                                     .proposedName = found->proposedName,
                                     .typeDescription = SnifferViewModel::tr("All files"),
                                     .extension = {}};
        const std::optional<QUrl> file = co_await m_parts.panels.chooseNewFile(panel, stop);
        if (stop.stop_requested())
            co_return;
        if (!m_savings.contains(saving))
            continue;
        if (file) {
            m_savings[saving].place = file->toLocalFile();
            Q_EMIT placeChosen(saving);
            moveSaved(saving);
            continue;
        }
        // What else the page wants saved goes with it.
        m_placeless.prepend(saving);
        for (const int refused : std::exchange(m_placeless, {})) {
            QFile::remove(m_savings.take(refused).path);
            Q_EMIT savingCancelled(refused);
        }
    }
    m_isAsking = false;
}

void SnifferViewModel::setPanelOpen(bool open)
{
    if (std::exchange(m_isPanelOpen, open) == open || open)
        return;
    // Not before whoever asked for it has been answered.
    m_panelClosed.start({}, [this] { choosePlaces(); });
}

int SnifferViewModel::beginUpload()
{
    const int upload = ++m_lastUpload;
    chooseUpload(upload);
    return upload;
}

Task<> SnifferViewModel::chooseUpload(int upload)
{
    const std::stop_token stop = m_lifetime.get_token();
    // Whoever asks knows the number first.
    const auto turn = m_parts.scheduler.sleep({}, stop);
    if (!co_await turn)
        co_return;
    if (m_isPanelOpen) {
        Q_EMIT notice(SnifferViewModel::tr("Only one panel for choosing files can be open."));
        Q_EMIT uploadChosen(upload, {});
        co_return;
    }
    const OpenPanelRequest panel{.title = SnifferViewModel::tr("Choose File to Upload"),
                                 .prompt = SnifferViewModel::tr("Upload"),
                                 .typeDescription = SnifferViewModel::tr("All files"),
                                 .extensions = {}};
    const std::optional<QUrl> file = co_await m_parts.panels.chooseFile(panel, stop);
    if (!stop.stop_requested())
        Q_EMIT uploadChosen(upload, file ? file->toLocalFile() : QString());
}

bool SnifferViewModel::takeKey(const QString &text)
{
    if (text != u"+" && text != u"-")
        return false;
    setStreamsExpanded(text == u"+");
    return true;
}

void SnifferViewModel::finishSaving(int saving, const QString &path)
{
    if (const auto found = m_savings.find(saving); found != m_savings.end()) {
        found->path = path;
        moveSaved(saving);
    } else {
        QFile::remove(path);
    }
}

Task<> SnifferViewModel::moveSaved(int number)
{
    const std::stop_token stop = m_lifetime.get_token();
    const Saving saving = m_savings.value(number);
    if (saving.path.isEmpty() || saving.place.isEmpty())
        co_return;
    m_savings.remove(number);
    const auto move = [saving] { return moveFile(saving.path, saving.place); };
    const auto moving = m_parts.scheduler.inBackground(move);
    const std::expected<void, FileWriteError> moved = co_await moving;
    if (stop.stop_requested())
        co_return;
    const QString name = QFileInfo(saving.place).fileName();
    if (moved) {
        Q_EMIT notice(tr("Saved: %1").arg(name));
        co_return;
    }
    Q_EMIT notice(tr("Could not save %1: %2").arg(name, moved.error().description));
    // There may be another place for it.
    if (QFile::exists(saving.path)) {
        m_savings.insert(number, {.proposedName = name, .path = saving.path});
        m_placeless.append(number);
        choosePlaces();
    }
}

void SnifferViewModel::abandonSaving(int saving, const QString &reason)
{
    if (m_savings.remove(saving) && !reason.isEmpty())
        Q_EMIT notice(tr("Could not save the file: %1").arg(reason));
}

} // namespace lumaro
