#include "playlist/ChannelIndex.h"

#include <algorithm>
#include <cstring>
#include <string.h>

namespace lumaro {

namespace {

QByteArray folded(const QString &text)
{
    return text.toCaseFolded().toUtf8();
}

} // namespace

ChannelIndex::ChannelIndex(const PlaylistEntries &entries)
{
    arrangeByGroup(entries);
    foldNames(entries);
}

void ChannelIndex::arrangeByGroup(const PlaylistEntries &entries)
{
    const int named = entries.groupCount();
    // The entries without a group come last, as one more.
    const auto slot = [&](qsizetype entry) {
        const int group = entries.groupIndex(entry);
        return size_t(group < 0 ? named : group);
    };
    std::vector<Group> groups(size_t(named) + 1);
    for (int group = 0; group < named; ++group)
        groups[size_t(group)].title = entries.groupTitle(group);
    groups.back().title = QStringLiteral("Other");

    for (qsizetype entry = 0; entry < entries.size(); ++entry)
        ++groups[slot(entry)].count;
    qint32 first = 0;
    for (Group &group : groups)
        group.first = std::exchange(first, first + group.count);

    std::vector<qint32> next(groups.size());
    std::ranges::transform(groups, next.begin(), &Group::first);
    m_order.resize(size_t(entries.size()));
    for (qsizetype entry = 0; entry < entries.size(); ++entry)
        m_order[size_t(next[slot(entry)]++)] = qint32(entry);

    std::erase_if(groups, [](const Group &group) { return group.count == 0; });
    m_groups = std::move(groups);
    m_isGrouped = named > 0;
}

void ChannelIndex::foldNames(const PlaylistEntries &entries)
{
    QString names;
    for (qsizetype entry = 0; entry < entries.size(); ++entry) {
        const QUtf8StringView name = entries.name(entry);
        const qsizetype start = names.size();
        names += name.toString();
        std::replace(names.begin() + start, names.end(), QChar(u'\n'), QChar(u' '));
        names += u'\n';
    }
    // Folding all names at once is much quicker than one by one, and keeps the line feeds.
    m_names = folded(names);
    m_nameEnds.reserve(size_t(entries.size()));
    for (qsizetype i = m_names.indexOf('\n'); i >= 0; i = m_names.indexOf('\n', i + 1))
        m_nameEnds.push_back(quint32(i));
}

std::vector<quint8> ChannelIndex::matches(const QString &text) const
{
    const QByteArray needle = folded(text);
    std::vector<quint8> matched(m_order.size(), needle.isEmpty() ? 1 : 0);
    if (needle.isEmpty())
        return matched;

    const char *const begin = m_names.constData();
    const char *const end = begin + m_names.size();
    const char *at = begin;
    auto nameEnd = m_nameEnds.begin();
    while (const void *hit =
               memmem(at, size_t(end - at), needle.constData(), size_t(needle.size()))) {
        const auto offset = quint32(static_cast<const char *>(hit) - begin);
        nameEnd = std::lower_bound(nameEnd, m_nameEnds.end(), offset);
        matched[size_t(nameEnd - m_nameEnds.begin())] = 1;
        at = begin + *nameEnd + 1;
    }

    for (const Group &group : m_groups) {
        if (!m_isGrouped || !folded(group.title).contains(needle))
            continue;
        for (qint32 i = group.first; i < group.first + group.count; ++i)
            matched[size_t(m_order[size_t(i)])] = 1;
    }
    return matched;
}

} // namespace lumaro
