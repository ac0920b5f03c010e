#include "app/LocalM3UModel.h"

#include "app/MainWindowModel.h"
#include "platform/AtomicFile.h"
#include "player/PlaylistFile.h"
#include "playlist/PlaylistWriter.h"

#include <QFileInfo>
#include <QLocale>

namespace lumaro {

namespace {

/// Longer names are not worth quoting in a question.
constexpr qsizetype longestQuotedName = 200;

QString linkCount(qsizetype count)
{
    return count == 1 ? LocalM3UModel::tr("1 link")
                      : LocalM3UModel::tr("%Ln links", nullptr, int(count));
}

/// Everything else that a library holds is a stream, whatever its address looks like.
bool isForTheRecognisers(const QUrl &url)
{
    return pathExtension(url) == u"m3u" || YouTubeContent::fromUrl(url)
        || OKVideoContent::fromUrl(url);
}

QUrl droppedUrl(const QList<QUrl> &urls, const QString &text)
{
    return urls.value(0, QUrl(text.trimmed(), QUrl::StrictMode));
}

} // namespace

QString exportFileName(QDate day)
{
    return u"Lumaro " + day.toString(Qt::ISODate) + u".m3u";
}

LocalM3UModel::LocalM3UModel(const Parts &parts, QObject *parent)
    : QObject(parent)
    , m_store(parts.store)
    , m_player(parts.player)
    , m_window(parts.window)
    , m_panels(parts.panels)
    , m_files(parts.files)
    , m_list(parts.store, parts.scheduler)
    , m_editor(parts.panels)
    , m_history(parts.store)
{
    connect(&m_store, &LocalM3UStore::loaded, this, &LocalM3UModel::currentChanged);
    connect(&m_store, &LocalM3UStore::entriesChanged, this, &LocalM3UModel::currentChanged);
    connect(&m_store, &LocalM3UStore::entriesChanged, this, [this] {
        setImportError({});
        // All that the user was asked about is not all any more.
        if (m_question == Question::DeleteAll)
            disagree();
    });
    connect(&m_store, &LocalM3UStore::errorMessageChanged, this,
            &LocalM3UModel::errorMessageChanged);
    connect(&m_store, &LocalM3UStore::storingFailed, this,
            [this] { m_player.showToast(m_store.errorMessage(), PlayerModel::toastDuration); });
    connect(&m_player, &PlayerModel::currentURLChanged, this, [this] {
        m_list.setCurrentURL(m_player.currentURL());
        Q_EMIT currentChanged();
    });
    connect(&m_player, &PlayerModel::playlistChanged, this, &LocalM3UModel::canSearchChanged);
    connect(&m_list, &LocalM3UListModel::countChanged, this, &LocalM3UModel::canSearchChanged);
    connect(&m_editor, &LocalM3UEditor::saved, this, &LocalM3UModel::storeEdited);
}

LocalM3UModel::~LocalM3UModel()
{
    m_import.request_stop();
    m_lifetime.request_stop();
}

QString LocalM3UModel::errorMessage() const
{
    return isNotStored() ? m_store.errorMessage() : m_importError;
}

void LocalM3UModel::tryAgain()
{
    m_store.persist();
}

void LocalM3UModel::setImportError(const QString &message)
{
    if (m_importError == message)
        return;
    m_importError = message;
    Q_EMIT errorMessageChanged();
}

void LocalM3UModel::show()
{
    m_window.revealSidebar(MainWindowModel::PlayerSidebarSection::localM3U);
    Q_EMIT focusRequested();
}

bool LocalM3UModel::isInSight() const
{
    return m_window.sidebarShown() && m_window.showsLocalM3U();
}

bool LocalM3UModel::canSearch() const
{
    return !m_player.playlist().isEmpty() || m_list.count() > 0;
}

void LocalM3UModel::search()
{
    if (m_list.count() > 0 && (isInSight() || m_player.playlist().isEmpty())) {
        show();
        return;
    }
    m_window.revealSidebar(MainWindowModel::PlayerSidebarSection::network);
    Q_EMIT m_window.channelSearchRequested();
}

void LocalM3UModel::undo()
{
    m_history.undo();
    tellUnseen(tr("Undone in Local M3U, which has %1 now."));
}

void LocalM3UModel::redo()
{
    m_history.redo();
    tellUnseen(tr("Redone in Local M3U, which has %1 now."));
}

void LocalM3UModel::tellUnseen(const QString &change)
{
    if (!isInSight())
        m_player.showToast(change.arg(linkCount(m_store.entries().size())),
                           PlayerModel::toastDuration);
}

// One link

/// An entry without an id when there is none.
PlaylistEntry LocalM3UModel::entryWithId(const QUuid &id) const
{
    const qsizetype index = m_store.entries().indexOf(id);
    return index < 0 ? PlaylistEntry() : m_store.entries().at(index);
}

void LocalM3UModel::play(int row)
{
    const PlaylistEntry entry = entryWithId(m_list.idAt(row));
    if (entry.url.isEmpty())
        return;
    if (entry.url.isLocalFile() && isChannelListFile(entry.url))
        m_player.importM3UFile(entry.url, entry.name);
    else if (isForTheRecognisers(entry.url))
        m_player.openRemote(entry.url.toString(QUrl::FullyEncoded), entry.name);
    else
        m_player.play(entry.url, entry.name, pathExtension(entry.url) == u"m3u8");
}

QString LocalM3UModel::addressAt(int row) const
{
    return entryWithId(m_list.idAt(row)).url.toString(QUrl::FullyEncoded);
}

void LocalM3UModel::add()
{
    show();
    m_editor.beginAdding({});
}

void LocalM3UModel::edit(int row)
{
    const PlaylistEntry entry = entryWithId(m_list.idAt(row));
    if (!entry.url.isEmpty())
        m_editor.beginEditing(entry);
}

void LocalM3UModel::storeEdited(const PlaylistEntry &entry)
{
    const qsizetype index = m_store.entries().indexOf(entry.id);
    if (index < 0) {
        if (m_store.contains(entry.url))
            m_player.showToast(tr("Replaced the link with the same address."),
                               PlayerModel::toastDuration);
        m_store.save(entry);
        m_list.setFilterText({});
    } else if (m_store.entries().at(index) != entry) {
        m_store.setEntries(m_store.entries().replacing(index, 1, {entry}));
        m_store.persist();
    }
    m_list.select(entry.id);
}

// Questions

void LocalM3UModel::remove(int row)
{
    if (const QUuid id = m_list.idAt(row); m_store.entries().indexOf(id) >= 0)
        ask(Question::DeleteOne, id);
}

void LocalM3UModel::removeAll()
{
    if (!m_store.entries().isEmpty())
        ask(Question::DeleteAll, {});
}

void LocalM3UModel::ask(Question question, const QUuid &id)
{
    m_question = question;
    m_questionedId = id;
    Q_EMIT questionChanged();
}

void LocalM3UModel::agree()
{
    const Question question = m_question;
    const QUuid id = m_questionedId;
    disagree();
    if (question == Question::DeleteOne)
        m_history.deleteForGood(id);
    else if (question == Question::DeleteAll)
        m_history.deleteAllForGood();
}

void LocalM3UModel::disagree()
{
    if (m_question != Question::None)
        ask(Question::None, {});
}

QString LocalM3UModel::questionTitle() const
{
    switch (m_question) {
    case Question::None:
        return {};
    case Question::DeleteOne:
        return tr("Delete Channel?");
    case Question::DeleteAll:
        return tr("Delete All Local M3U8 Links?");
    }
    Q_UNREACHABLE();
}

QString LocalM3UModel::questionText() const
{
    switch (m_question) {
    case Question::None:
        return {};
    case Question::DeleteOne: {
        const QString name = entryWithId(m_questionedId).name.trimmed();
        if (name.isEmpty() || name.size() > longestQuotedName)
            return tr("Are you sure you want to delete this channel? This action "
                      "cannot be undone.");
        return tr("Are you sure you want to delete \"%1\" from Local M3U? This action cannot be "
                  "undone.")
            .arg(name);
    }
    case Question::DeleteAll:
        return tr("This permanently deletes every saved local M3U8 link. This action "
                  "cannot be undone.");
    }
    Q_UNREACHABLE();
}

QString LocalM3UModel::questionButton() const
{
    switch (m_question) {
    case Question::None:
        return {};
    case Question::DeleteOne:
        return tr("Delete");
    case Question::DeleteAll:
        return tr("Delete Permanently");
    }
    Q_UNREACHABLE();
}

// Saving from the player

bool LocalM3UModel::canSaveCurrent() const
{
    return !m_player.currentURL().isEmpty();
}

bool LocalM3UModel::isCurrentSaved() const
{
    return canSaveCurrent() && !m_store.isLoading() && m_store.contains(m_player.currentURL());
}

void LocalM3UModel::saveToLocalM3U(int index)
{
    if (const auto entry = m_window.usableEntry(index))
        saveChannel(*entry);
}

void LocalM3UModel::saveChannel(PlaylistEntry entry)
{
    // The library may hold the playlist's own entry already.
    entry.id = QUuid::createUuid();
    m_store.save(entry);
    notifySaved();
}

void LocalM3UModel::saveCurrent()
{
    if (!canSaveCurrent())
        return;
    if (const qsizetype saved = m_store.indexOf(m_player.currentURL()); saved >= 0) {
        show();
        m_list.setFilterText({});
        m_list.select(m_store.entries().id(saved));
    } else if (const auto entry = m_window.currentEntry()) {
        saveChannel(*entry);
    } else {
        // A stream without a title of its own is better named after its address.
        const bool isNamed = m_player.itemTitle() != productName();
        m_store.save(m_player.currentURL(), isNamed ? m_player.itemTitle() : QString());
        notifySaved();
    }
}

void LocalM3UModel::notifySaved()
{
    m_player.showToast(tr("Saved to Local M3U: %1").arg(m_store.entries().at(0).name),
                       PlayerModel::toastDuration);
}

// Files

void LocalM3UModel::importLocalPlaylist()
{
    chooseAndImport();
}

bool LocalM3UModel::drop(const QList<QUrl> &urls, const QString &text)
{
    const QUrl url = droppedUrl(urls, text);
    const QString remark = urls.size() > 1 ? MainWindowModel::openedOf(1, urls.size()) : QString();
    switch (dropAction(urls, text)) {
    case NothingDropped:
        return false;
    case ImportDropped:
        importFrom(url, remark);
        return true;
    case AddDropped:
        m_editor.beginAdding(url.toString(QUrl::FullyEncoded));
        if (!remark.isEmpty())
            m_player.showToast(remark, PlayerModel::toastDuration);
        return true;
    case PlayDropped:
        return m_window.openDropped(urls, text);
    }
    Q_UNREACHABLE();
}

LocalM3UModel::DropAction LocalM3UModel::dropAction(const QList<QUrl> &urls,
                                                    const QString &text) const
{
    const QUrl url = droppedUrl(urls, text);
    if (url.isLocalFile() && isChannelListFile(url))
        return ImportDropped;
    if (url.scheme() == u"http" || url.scheme() == u"https")
        return AddDropped;
    return urls.isEmpty() && text.trimmed().isEmpty() ? NothingDropped : PlayDropped;
}

Task<> LocalM3UModel::chooseAndImport()
{
    const std::stop_token stop = m_lifetime.get_token();
    const std::optional<QUrl> file = co_await m_player.chooseM3UFile();
    if (file && !stop.stop_requested())
        importFrom(*file);
}

Task<> LocalM3UModel::importFrom(QUrl file, QString remark)
{
    // The one before ends with this.
    std::exchange(m_import, std::stop_source()).request_stop();
    const std::stop_token stop = m_import.get_token();
    setImportError({});
    auto reading = m_player.importM3UFile(file, std::nullopt);
    // The list that is read becomes the player's too, which must not lead away from here.
    m_window.keepSectionWhileLoading();
    const PlayerModel::PlaylistResult result = co_await reading;
    if (stop.stop_requested())
        co_return;
    if (result)
        replaceLibrary(*result, remark);
    else
        setImportError(result.error());
}

void LocalM3UModel::replaceLibrary(const PlaylistEntries &entries, const QString &remark)
{
    const qsizetype before = m_store.entries().size();
    m_list.setFilterText({});
    m_store.setEntries(entries);
    m_store.persist();
    const QString notice = before == 0 ? tr("Imported %1").arg(linkCount(entries.size()))
                                       : tr("Imported %1 in place of %2. Undo brings them back.")
                                             .arg(linkCount(entries.size()), linkCount(before));
    m_player.showToast(remark.isEmpty() ? notice : notice + u' ' + remark,
                       PlayerModel::toastDuration);
}

void LocalM3UModel::exportLocalPlaylistAsM3U()
{
    exportTo(m_lifetime.get_token());
}

Task<> LocalM3UModel::exportTo(std::stop_token stop)
{
    const SavePanelRequest request{
        .title = tr("Export Local M3U Playlist"),
        .prompt = tr("Export"),
        .proposedName = exportFileName(QDate::currentDate()),
        .typeDescription = tr("M3U playlists"),
        .extension = QStringLiteral("m3u"),
    };
    const std::optional<QUrl> file = co_await m_panels.chooseNewFile(request, stop);
    if (!file || stop.stop_requested())
        co_return;
    const QString path = file->toLocalFile();
    const auto writing = m_files.inBackground(
        [path, entries = m_store.entries()] { return replaceFile(path, writePlaylist(entries)); });
    const std::expected<void, FileWriteError> written = co_await writing;
    if (stop.stop_requested())
        co_return;
    if (written)
        m_player.showToast(tr("Exported: %1").arg(QFileInfo(path).fileName()),
                           PlayerModel::toastDuration);
    else
        setExportError(written.error().description);
}

void LocalM3UModel::closeExportError()
{
    setExportError({});
}

void LocalM3UModel::setExportError(const QString &message)
{
    if (m_exportError == message)
        return;
    m_exportError = message;
    Q_EMIT exportErrorChanged();
}

} // namespace lumaro
