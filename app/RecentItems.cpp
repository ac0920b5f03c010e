#include "app/RecentItems.h"

#include "app/MainWindowModel.h"
#include "player/PlayerModel.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace lumaro {

namespace {

QString addressOf(const QUrl &url)
{
    return url.toString(QUrl::FullyEncoded);
}

/// A server, and what is opened there. Channel lists have names and passwords in the query or in
/// the folders; whoever sees the menu need not see them.
QString shownAddress(const QUrl &url)
{
    const QUrl bare = url.adjusted(QUrl::RemoveUserInfo | QUrl::RemoveQuery | QUrl::RemoveFragment);
    QString shown = bare.toString(QUrl::RemovePath);
    shown += bare.path().count(u'/') > 1 ? QStringView(u"/…/") : QStringView(u"/");
    shown += bare.fileName().simplified();
    if (url.hasQuery())
        shown += u"?…";
    return shown;
}

/// What the settings hold need not be what this program wrote.
std::optional<RecentItem> itemFrom(const QJsonObject &stored)
{
    const QString address = stored.value(u"url").toString();
    const QUrl url(address, QUrl::StrictMode);
    if (address.size() > RecentItems::maximumAddressLength
        || (!url.isLocalFile() && !remoteUrl(address)))
        return std::nullopt;
    return RecentItem{url, stored.value(u"name").toString()};
}

} // namespace

RecentItems::RecentItems(const Parts &parts, QObject *parent)
    : QObject(parent)
    , m_parts(parts)
    , m_stored(parts.defaults, parts.scheduler, QStringLiteral("Lumaro.RecentItems"))
{
    const QJsonValue stored = m_stored.read();
    if (!stored.isArray())
        m_stored.setAside();
    for (const QJsonValue value : stored.toArray()) {
        const auto item = itemFrom(value.toObject());
        if (item && m_items.size() < maximum)
            m_items.append(*item);
    }
    connect(&parts.player, &PlayerModel::sourceOpened, this,
            [this](const QUrl &url, const QString &name) { opened({url, name}); });
    connect(&parts.mediaPlayer, &MediaPlayer::itemStarted, this, &RecentItems::recordPlaying);
}

RecentItems::~RecentItems()
{
    m_lifetime.request_stop();
}

QString RecentItems::title(const RecentItem &item) const
{
    if (!item.name.isEmpty())
        return item.name.simplified();
    if (!item.url.isLocalFile())
        return shownAddress(item.url);
    const QString name = item.url.fileName();
    const auto isNamesake = [&name, &item](const RecentItem &other) {
        return other.url.isLocalFile() && other != item && other.url.fileName() == name;
    };
    if (std::ranges::none_of(m_items, isNamesake))
        return name.simplified();
    return name.simplified() + u" — " + QFileInfo(item.url.toLocalFile()).path().simplified();
}

void RecentItems::opened(const RecentItem &item)
{
    m_opening = item;
    // Lists of channels and sites' own players do not go through the media player.
    if (m_parts.player.currentURL() != item.url)
        record(*std::exchange(m_opening, std::nullopt));
}

void RecentItems::recordPlaying()
{
    if (m_opening && m_parts.player.currentURL() == m_opening->url)
        record(*std::exchange(m_opening, std::nullopt));
}

void RecentItems::record(const RecentItem &item)
{
    if (addressOf(item.url).size() > maximumAddressLength)
        return;
    QList<RecentItem> items = m_items;
    items.removeIf([&item](const RecentItem &other) { return other.url == item.url; });
    items.prepend(item);
    items = items.first(std::min(items.size(), maximum));
    if (items == m_items)
        return;
    m_items = items;
    store();
    Q_EMIT changed();
}

Task<> RecentItems::open(RecentItem item)
{
    if (!item.url.isLocalFile()) {
        const auto name = item.name.isEmpty() ? std::nullopt : std::optional(item.name);
        m_parts.player.openRemote(addressOf(item.url), name);
        co_return;
    }
    const std::stop_token stop = m_lifetime.get_token();
    const std::stop_token overtaken = m_parts.player.beginLookUp();
    // A folder from elsewhere may take its time.
    const auto looking = m_parts.scheduler.inBackground(
        [path = item.url.toLocalFile()] { return QFileInfo::exists(path); });
    const bool exists = co_await looking;
    if (stop.stop_requested() || overtaken.stop_requested())
        co_return;
    if (exists)
        m_parts.window.openDropped({item.url}, QString());
    else
        setMissing(item);
}

void RecentItems::clear()
{
    m_opening.reset();
    if (!m_items.isEmpty()) {
        m_items.clear();
        store();
        Q_EMIT changed();
    }
    Q_EMIT cleared();
}

QString RecentItems::missingFile() const
{
    return m_missing ? m_missing->url.toLocalFile() : QString();
}

void RecentItems::removeMissing()
{
    if (!m_missing)
        return;
    const QUrl url = m_missing->url;
    setMissing(std::nullopt);
    if (!m_items.removeIf([&url](const RecentItem &other) { return other.url == url; }))
        return;
    store();
    Q_EMIT changed();
}

void RecentItems::keepMissing()
{
    setMissing(std::nullopt);
}

void RecentItems::setMissing(const std::optional<RecentItem> &item)
{
    if (m_missing == item)
        return;
    m_missing = item;
    Q_EMIT missingFileChanged();
}

void RecentItems::store()
{
    QJsonArray array;
    for (const RecentItem &item : m_items) {
        array.append(QJsonObject{{QStringLiteral("url"), addressOf(item.url)},
                                 {QStringLiteral("name"), item.name}});
    }
    m_stored.write(array);
}

} // namespace lumaro
