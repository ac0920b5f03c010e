#include "playlist/LocalM3UHistory.h"

namespace lumaro {

namespace {

PlaylistEntries without(const QUuid &id, const PlaylistEntries &entries)
{
    const qsizetype index = entries.indexOf(id);
    return index < 0 ? entries : entries.replacing(index, 1, {});
}

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
    , m_current(store.entries())
{
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

void LocalM3UHistory::deleteForGood(const QUuid &id)
{
    for (QList<PlaylistEntries> *states : {&m_before, &m_after}) {
        for (PlaylistEntries &state : *states)
            state = without(id, state);
    }
    apply(without(id, m_current));
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
