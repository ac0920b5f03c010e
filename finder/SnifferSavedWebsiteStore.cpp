#include "finder/SnifferSavedWebsiteStore.h"

#include "finder/WebAddress.h"
#include "finder/WebListFile.h"
#include "platform/AtomicFile.h"

#include <QDebug>

namespace lumaro {

namespace {

QString defaultsKey()
{
    return QStringLiteral("Lumaro.M3U8Sniffer.SavedWebsites");
}

void log(const QString &message)
{
    qWarning().noquote() << u"[SnifferSavedWebsiteStore] " + message;
}

/// Empty when the file was written, else why not.
QString writeFile(const QUrl &file, const QList<SnifferSavedWebsite> &websites)
{
    if (!file.isLocalFile())
        return QStringLiteral("It is not a local file.");
    const auto written = replaceFile(file.toLocalFile(), encodeWebsites(websites));
    return written ? QString() : written.error().description;
}

} // namespace

SnifferSavedWebsiteStore::SnifferSavedWebsiteStore(UserDefaults &defaults, Scheduler &scheduler,
                                                   FilePanels &panels, WallClock clock,
                                                   QObject *parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_scheduler(scheduler)
    , m_panels(panels)
    , m_clock(std::move(clock))
    , m_writer(defaults, scheduler, defaultsKey(), [](const DefaultsWriter::Result &result) {
        if (!result)
            log(u"Failed to save websites: " + result.error().description());
    })
{
    load();
}

SnifferSavedWebsiteStore::~SnifferSavedWebsiteStore()
{
    m_lifetime.request_stop();
}

void SnifferSavedWebsiteStore::load()
{
    const auto data = m_defaults.data(defaultsKey());
    auto websites = data ? decodeWebsites(*data) : std::nullopt;
    if (websites) {
        // What a clock once took for later must not outlast every visit from now on.
        const QDateTime now = m_clock();
        for (SnifferSavedWebsite &website : *websites)
            website.savedAt = std::min(website.savedAt, now);
        m_list = WebList(*websites);
        return;
    }
    // Something may be there that only could not be read.
    const auto saved = m_defaults.setAside(defaultsKey());
    m_mayStore = saved.has_value();
    if (!saved)
        log(u"Failed to set unreadable websites aside: " + saved.error().description());
}

bool SnifferSavedWebsiteStore::isFavorite(const QString &urlString) const
{
    const auto address = normalizedWebAddress(urlString);
    const qsizetype index = address ? m_list.find(*address) : -1;
    return index >= 0 && websites()[index].isFavorite;
}

void SnifferSavedWebsiteStore::save(const QString &urlString, const QString &title, bool isFavorite)
{
    const auto address = normalizedWebAddress(urlString);
    if (!address)
        return;
    const QString candidate = title.trimmed();
    const qsizetype index = m_list.find(*address);
    if (index < 0) {
        m_list.prepend({.id = QUuid::createUuid(),
                        .urlString = *address,
                        .title = candidate,
                        .savedAt = m_clock(),
                        .isFavorite = isFavorite});
    } else {
        SnifferSavedWebsite website = websites()[index];
        const QStringList addresses{website.urlString, *address, urlString.trimmed()};
        website.savedAt = m_clock();
        website.isFavorite = website.isFavorite || isFavorite;
        if (!candidate.isEmpty() && !addresses.contains(candidate))
            website.title = candidate;
        m_list.replace(index, website);
        m_list.moveToFront(index);
    }
    trimAndPersist();
}

void SnifferSavedWebsiteStore::recordVisit(const QString &urlString, const QString &title)
{
    const auto address = normalizedWebAddress(urlString);
    if (!address)
        return;
    const QString trimmed = title.trimmed();
    const QString candidate = trimmed.isEmpty() ? QUrl(*address).host() : trimmed;
    const qsizetype index = m_list.find(*address);
    if (index < 0) {
        m_list.prepend({.id = QUuid::createUuid(),
                        .urlString = *address,
                        .title = candidate,
                        .savedAt = m_clock(),
                        .visitCount = 1});
    } else {
        SnifferSavedWebsite website = websites()[index];
        const QStringList addresses{website.urlString, *address, urlString.trimmed()};
        website.savedAt = m_clock();
        if (website.visitCount < std::numeric_limits<qint64>::max())
            ++website.visitCount;
        if (!addresses.contains(candidate))
            website.title = candidate;
        m_list.replace(index, website);
        m_list.moveToFront(index);
    }
    trimAndPersist();
}

void SnifferSavedWebsiteStore::toggleFavorite(const QUuid &id)
{
    const qsizetype index = m_list.find(id);
    if (index < 0)
        return;
    SnifferSavedWebsite website = websites()[index];
    website.isFavorite = !website.isFavorite;
    m_list.replace(index, website);
    // Nothing was added: a former favourite, however old, can still be made one again.
    publish();
}

void SnifferSavedWebsiteStore::toggleFavorite(const QString &urlString, const QString &title)
{
    const auto address = normalizedWebAddress(urlString);
    if (!address)
        return;
    const qsizetype index = m_list.find(*address);
    if (index >= 0 && websites()[index].isFavorite)
        toggleFavorite(websites()[index].id);
    else
        save(*address, title, true);
}

void SnifferSavedWebsiteStore::remove(const QUuid &id)
{
    const qsizetype index = m_list.find(id);
    if (index < 0)
        return;
    m_list.remove(index);
    publish();
}

void SnifferSavedWebsiteStore::removeAll(bool onlyHistory)
{
    const qsizetype before = websites().size();
    if (onlyHistory)
        m_list.keepFavoritesOnly();
    else
        m_list = {};
    if (websites().size() != before)
        publish();
}

Task<> SnifferSavedWebsiteStore::exportWebsites()
{
    const std::stop_token stop = m_lifetime.get_token();
    const SavePanelRequest request{.title = tr("Export Web List"),
                                   .prompt = {},
                                   .proposedName = QStringLiteral("VarnWebList.json"),
                                   .typeDescription = tr("Web List"),
                                   .extension = QStringLiteral("json")};
    const std::optional<QUrl> file = co_await m_panels.chooseNewFile(request, stop);
    if (!file || stop.stop_requested())
        co_return;
    const auto write = [file = *file, list = websites()] { return writeFile(file, list); };
    const auto writing = m_scheduler.inBackground(write);
    const QString failure = co_await writing;
    if (!failure.isEmpty())
        log(u"Failed to export websites: " + failure);
}

Task<> SnifferSavedWebsiteStore::importWebsites()
{
    const std::stop_token stop = m_lifetime.get_token();
    const OpenPanelRequest request{.title = tr("Import Web List"),
                                   .prompt = {},
                                   .typeDescription = tr("Web List"),
                                   .extensions = {QStringLiteral("json")}};
    const std::optional<QUrl> file = co_await m_panels.chooseFile(request, stop);
    if (!file || stop.stop_requested())
        co_return;
    const QDateTime now = m_clock();
    const auto read = [file = *file, now] { return readWebListFile(file, now); };
    const auto reading = m_scheduler.inBackground(read);
    const auto imported = co_await reading;
    if (stop.stop_requested())
        co_return;
    if (imported)
        co_await mergeImportedWebsites(*imported);
    else
        log(u"Failed to import websites: " + description(imported.error()));
}

Task<> SnifferSavedWebsiteStore::mergeImportedWebsites(WebList imported)
{
    const std::stop_token stop = m_lifetime.get_token();
    constexpr int attempts = 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const int revision = m_revision;
        const auto merge = [before = m_list, imported] {
            WebList list = before;
            list.merge(imported);
            list.trimHistory();
            return list;
        };
        const auto merging = m_scheduler.inBackground(merge);
        WebList merged = co_await merging;
        if (stop.stop_requested())
            co_return;
        // A page visited meanwhile must not be lost.
        if (revision == m_revision) {
            m_list = std::move(merged);
            publish();
            co_return;
        }
    }
    // Pages come faster than lists are merged.
    m_list.merge(imported);
    trimAndPersist();
}

void SnifferSavedWebsiteStore::trimAndPersist()
{
    m_list.trimHistory();
    publish();
}

void SnifferSavedWebsiteStore::publish()
{
    ++m_revision;
    persist();
    Q_EMIT websitesChanged();
}

void SnifferSavedWebsiteStore::persist()
{
    if (m_mayStore)
        m_writer.write([list = websites()] { return encodeWebsites(list); });
}

} // namespace lumaro
