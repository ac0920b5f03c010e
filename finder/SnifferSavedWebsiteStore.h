#pragma once

#include "finder/WebList.h"
#include "platform/DefaultsWriter.h"
#include "platform/FilePanels.h"
#include "platform/WallClock.h"

#include <QObject>

namespace lumaro {

/// The websites that the user saved or visited in the stream finder. Every change is stored soon
/// and in the background. Main thread.
class SnifferSavedWebsiteStore : public QObject
{
    Q_OBJECT
    /// The last saved or visited first.
    Q_PROPERTY(QList<lumaro::SnifferSavedWebsite> websites READ websites NOTIFY websitesChanged)

public:
    /// Reads what is stored; what cannot be read is set aside. The arguments outlive the store.
    SnifferSavedWebsiteStore(UserDefaults &defaults, Scheduler &scheduler, FilePanels &panels,
                             WallClock clock = systemClock(), QObject *parent = nullptr);
    ~SnifferSavedWebsiteStore() override;

    const QList<SnifferSavedWebsite> &websites() const { return m_list.websites(); }
    Q_INVOKABLE bool isFavorite(const QString &urlString) const;

    // What is no http or https address changes nothing.

    /// Puts the page at the front of the list. One that is there keeps its visits, stays a
    /// favourite if it is one, and gets the title if that says something.
    Q_INVOKABLE void save(const QString &urlString, const QString &title, bool isFavorite);
    Q_INVOKABLE void recordVisit(const QString &urlString, const QString &title);
    /// A favourite becomes an entry of the history, and the other way round.
    Q_INVOKABLE void toggleFavorite(const QUuid &id);
    /// The same; a page that is not there is saved as a favourite.
    Q_INVOKABLE void toggleFavorite(const QString &urlString, const QString &title);
    Q_INVOKABLE void remove(const QUuid &id);
    /// Removes the history, or everything.
    Q_INVOKABLE void removeAll(bool onlyHistory);

    /// Ask for a file and write, or merge, the list; failures are logged.
    Task<> exportWebsites();
    Task<> importWebsites();
    Task<> mergeImportedWebsites(WebList imported);

Q_SIGNALS:
    void websitesChanged();

private:
    void load();
    void publish();
    void persist();
    void trimAndPersist();

    UserDefaults &m_defaults;
    Scheduler &m_scheduler;
    FilePanels &m_panels;
    WallClock m_clock;
    WebList m_list;
    /// Counts the list's changes.
    int m_revision = 0;
    DefaultsWriter m_writer;
    /// False when storing would destroy what could not be read.
    bool m_mayStore = true;
    std::stop_source m_lifetime;
};

} // namespace lumaro
