#pragma once

#include "platform/DefaultsWriter.h"
#include "playlist/AddressIndex.h"

#include <QObject>

namespace lumaro {

/// The user's own library of links, newest first, kept in the user defaults. It is read in the
/// background from the store's creation on; whoever asks for it earlier waits, and never finds
/// anything but what was stored. Main thread.
class LocalM3UStore : public QObject
{
    Q_OBJECT
    /// Why the library as it is now is not stored; empty while it is or soon will be.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)

public:
    static constexpr QLatin1StringView defaultsKey{"Lumaro.LocalM3U.SavedEntries"};

    /// Data that is no library is set aside. Both outlive the store, which stores what is not
    /// stored yet when it goes.
    LocalM3UStore(UserDefaults &defaults, Scheduler &scheduler, QObject *parent = nullptr);
    ~LocalM3UStore() override;

    /// Whoever asks for entries, or for an address, now has to wait; loaded() follows.
    bool isLoading() const { return m_isLoading; }
    const PlaylistEntries &entries() const { return library().entries; }
    /// Call persist() afterwards.
    void setEntries(const PlaylistEntries &entries);
    const QString &errorMessage() const { return m_errorMessage; }

    /// The first entry whose address has the same absolute string as `url`; -1 for none.
    qsizetype indexOf(const QUrl &url) const { return library().addresses.indexOf(url); }
    /// Some entry's address has the same absolute string as `url`.
    bool contains(const QUrl &url) const { return indexOf(url) >= 0; }

    /// Puts a new entry first, in place of the first one with the same address, and persists. A
    /// blank name is made up from the address. Nothing happens when that is invalid.
    void save(const QUrl &url, const QString &name);
    /// The same for an entry with more than these two.
    void save(PlaylistEntry entry);

    /// Stores the entries soon, in the background. A failure leaves what is stored as it is and
    /// shows in errorMessage.
    void persist();

Q_SIGNALS:
    /// What was stored is there; before the first entriesChanged().
    void loaded();
    void entriesChanged();
    void errorMessageChanged();
    /// A change could not be stored, perhaps like the one before; errorMessage says why.
    void storingFailed();

private:
    struct Library
    {
        PlaylistEntries entries;
        AddressIndex addresses;
    };
    class Loading;

    Library &library() const;
    void noteLoaded();
    void noteStored(const DefaultsWriter::Result &result);

    std::shared_ptr<Loading> m_loading;
    bool m_isLoading = true;
    std::stop_source m_lifetime;
    QString m_errorMessage;
    DefaultsWriter m_writer;
};

} // namespace lumaro
