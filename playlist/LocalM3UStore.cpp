#include "playlist/LocalM3UStore.h"

#include "playlist/PlaylistEntryCoding.h"
#include "playlist/UrlPath.h"

#include <QDebug>

#include <mutex>

namespace lumaro {

namespace {

QString withoutExtension(const QString &fileName)
{
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot > 0 ? fileName.first(dot) : fileName;
}

QString nameFor(const QUrl &url, const QString &given)
{
    for (const QString &name :
         {given.trimmed(), withoutExtension(lastPathComponent(url)), url.host()}) {
        if (!name.isEmpty())
            return name;
    }
    return QStringLiteral("Stream");
}

QString failureText(const UserDefaultsError &error)
{
    return LocalM3UStore::tr("Local M3U could not be saved. %1").arg(error.description());
}

PlaylistEntries load(UserDefaults &defaults)
{
    const QString key = LocalM3UStore::defaultsKey;
    if (const auto data = defaults.data(key)) {
        if (auto entries = decodeEntries(*data))
            return *std::move(entries);
    }
    // The next write must not destroy what somebody might still rescue. If this fails, so will
    // the write.
    (void)defaults.setAside(key);
    return {};
}

} // namespace

/// The stored library, read by whichever thread comes first.
class LocalM3UStore::Loading
{
public:
    explicit Loading(UserDefaults &defaults)
        : m_defaults(defaults)
    {
    }

    /// Waits if another thread is reading it.
    Library &library()
    {
        std::call_once(m_once, [this] {
            m_library.entries = load(m_defaults);
            m_library.addresses = AddressIndex(m_library.entries);
        });
        return m_library;
    }

    /// Nothing touches the defaults any more.
    void close()
    {
        std::call_once(m_once, [] { });
    }

private:
    UserDefaults &m_defaults;
    std::once_flag m_once;
    Library m_library;
};

LocalM3UStore::LocalM3UStore(UserDefaults &defaults, Scheduler &scheduler, QObject *parent)
    : QObject(parent)
    , m_loading(std::make_shared<Loading>(defaults))
    , m_writer(defaults, scheduler, defaultsKey,
               [this](const DefaultsWriter::Result &result) { noteStored(result); })
{
    scheduler.runInBackground([loading = m_loading] { loading->library(); },
                              [this, stop = m_lifetime.get_token()] {
                                  if (!stop.stop_requested())
                                      noteLoaded();
                              });
}

LocalM3UStore::~LocalM3UStore()
{
    m_lifetime.request_stop();
    m_loading->close();
    // No window is left to say it in.
    if (const DefaultsWriter::Result result = m_writer.flush(); !result)
        qWarning().noquote() << failureText(result.error());
}

LocalM3UStore::Library &LocalM3UStore::library() const
{
    return m_loading->library();
}

void LocalM3UStore::noteLoaded()
{
    if (std::exchange(m_isLoading, false))
        Q_EMIT loaded();
}

void LocalM3UStore::setEntries(const PlaylistEntries &entries)
{
    Library &library = this->library();
    noteLoaded();
    library = {entries, AddressIndex(entries, library.addresses)};
    Q_EMIT entriesChanged();
}

void LocalM3UStore::save(const QUrl &url, const QString &name)
{
    save({.id = QUuid::createUuid(),
          .name = name,
          .url = url,
          .logoURL = {},
          .groupTitle = {},
          .countryCode = {}});
}

void LocalM3UStore::save(PlaylistEntry entry)
{
    // It would make all that is stored unreadable.
    if (!entry.url.isValid())
        return;
    entry.name = nameFor(entry.url, entry.name);
    const qsizetype same = indexOf(entry.url);
    const PlaylistEntries others = same < 0 ? entries() : entries().replacing(same, 1, {});
    setEntries(others.replacing(0, 0, {entry}));
    persist();
}

void LocalM3UStore::persist()
{
    m_writer.write([entries = entries()] { return encodeEntries(entries); });
}

void LocalM3UStore::noteStored(const DefaultsWriter::Result &result)
{
    const QString message = result ? QString() : failureText(result.error());
    if (std::exchange(m_errorMessage, message) != message)
        Q_EMIT errorMessageChanged();
    if (!result)
        Q_EMIT storingFailed();
}

} // namespace lumaro
