#include "playlist/LocalM3UHistory.h"

#include "playlist/LinkRemover.h"

namespace lumaro {

namespace {

/// Drops the states that do not differ from the one that follows them, `current` at last.
void dropRepeated(QList<PlaylistEntries> &states, const PlaylistEntries &current)
{
    QList<PlaylistEntries> different;
    const PlaylistEntries *next = &current;
    for (qsizetype i = states.size() - 1; i >= 0; --i) {
        if (states[i] == *next)
            continue;
        different.prepend(states[i]);
        next = &states[i];
    }
    states = different;
}

} // namespace

LocalM3UHistory::LocalM3UHistory(LocalM3UStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    if (!store.isLoading())
        m_current = store.entries();
    connect(&store, &LocalM3UStore::loaded, this, [this] { m_current = m_store.entries(); });
    connect(&store, &LocalM3UStore::entriesChanged, this, &LocalM3UHistory::remember);
}

void LocalM3UHistory::remember()
{
    if (m_isApplying)
        return;
    m_before.append(std::exchange(m_current, m_store.entries()));
    if (m_before.size() > depth)
        m_before.removeFirst();
    m_after.clear();
    Q_EMIT changed();
}

void LocalM3UHistory::step(QList<PlaylistEntries> &from, QList<PlaylistEntries> &to)
{
    if (from.isEmpty())
        return;
    to.append(m_current);
    apply(from.takeLast());
    Q_EMIT changed();
}

void LocalM3UHistory::apply(const PlaylistEntries &entries)
{
    m_current = entries;
    m_isApplying = true;
    m_store.setEntries(entries);
    m_isApplying = false;
    m_store.persist();
}

// By value: the entry that the id may come from goes on the way.
void LocalM3UHistory::deleteForGood(QUuid id)
{
    const qsizetype index = m_current.indexOf(id);
    if (index < 0)
        return;
    const QUrl url = m_current.at(index).url;
    apply(m_current.replacing(index, 1, {}));
    // It may have had another address before; saving or importing it again gave it another id. A
    // list that was imported may hold the link twice, and then still does.
    LinkRemover link(id, m_store.contains(url) ? QByteArray() : url.toEncoded());
    for (QList<PlaylistEntries> *states : {&m_before, &m_after}) {
        for (PlaylistEntries &state : *states)
            state = link.without(state);
    }
    dropRepeated(m_before, m_current);
    dropRepeated(m_after, m_current);
    Q_EMIT changed();
}

void LocalM3UHistory::deleteAllForGood()
{
    m_before.clear();
    m_after.clear();
    apply({});
    Q_EMIT changed();
}

} // namespace lumaro
