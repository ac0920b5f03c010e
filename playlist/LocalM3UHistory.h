#pragma once

#include "playlist/LocalM3UStore.h"

#include <QList>

namespace lumaro {

/// Takes changes of the library back and makes them again. What the user deleted for good comes
/// back by neither. Main thread.
class LocalM3UHistory : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY changed)

public:
    /// How many changes are remembered.
    static constexpr qsizetype depth = 20;

    /// `store` outlives the history.
    explicit LocalM3UHistory(LocalM3UStore &store, QObject *parent = nullptr);

    bool canUndo() const { return !m_before.isEmpty(); }
    bool canRedo() const { return !m_after.isEmpty(); }

    Q_INVOKABLE void undo() { step(m_before, m_after); }
    Q_INVOKABLE void redo() { step(m_after, m_before); }

    /// Deletes the entry from the store and from every remembered state, there under whatever id
    /// its address has.
    void deleteForGood(QUuid id);
    void deleteAllForGood();

Q_SIGNALS:
    void changed();

private:
    void remember();
    void step(QList<PlaylistEntries> &from, QList<PlaylistEntries> &to);
    void apply(const PlaylistEntries &entries);

    LocalM3UStore &m_store;
    PlaylistEntries m_current;
    bool m_isApplying = false;
    /// The newest last.
    QList<PlaylistEntries> m_before;
    /// The next last.
    QList<PlaylistEntries> m_after;
};

} // namespace lumaro
