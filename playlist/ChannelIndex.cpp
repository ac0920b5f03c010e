#include "playlist/ChannelIndex.h"

#include "platform/Utf8Text.h"

#include <QCoreApplication>

#include <algorithm>

namespace lumaro {

namespace {

/// The beginning of `text`, at most `length` bytes of it and whole characters.
QUtf8StringView beginning(QUtf8StringView text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    const auto isContinuation = [&](qsizetype i) { return (uchar(text.data()[i]) & 0xc0) == 0x80; };
    while (length > 0 && isContinuation(length))
        --length;
    return text.first(length);
}

} // namespace

ChannelIndex::ChannelIndex(const PlaylistEntries &entries)
{
    arrangeByGroup(entries);
    m_names = FoldedTexts(entries.size(), [&](qsizetype i) { return shown(entries.name(i)); });
    m_titles = FoldedTexts(qsizetype(m_groups.size()),
                           [&](qsizetype i) { return m_groups[size_t(i)].title; });
}

QString ChannelIndex::shown(QUtf8StringView text)
{
    constexpr qsizetype longest = 1000;
    QString line = text::toString(beginning(text, longest));
    std::ranges::replace_if(
        line,
        [](QChar c) {
            return c.category() == QChar::Other_Control || c == QChar::LineSeparator
                || c == QChar::ParagraphSeparator;
        },
        u' ');
    return line;
}

void ChannelIndex::arrangeByGroup(const PlaylistEntries &entries)
{
    const int named = entries.groupCount();
    // The entries without a group come last, as one more.
    const auto slot = [&](qsizetype entry) {
        const int group = entries.groupIndex(entry);
        return size_t(group < 0 ? named : group);
    };
    m_isGrouped = named > 0;
    m_groups.resize(size_t(named) + 1);
    for (int group = 0; group < named; ++group)
        m_groups[size_t(group)].title = shown(entries.groupTitle(group).toUtf8());
    m_groups.back().title = QCoreApplication::translate("ChannelIndex", "Other");

    for (qsizetype entry = 0; entry < entries.size(); ++entry)
        ++m_groups[slot(entry)].count;
    qint32 first = 0;
    for (Group &group : m_groups)
        group.first = std::exchange(first, first + group.count);

    std::vector<qint32> next(m_groups.size());
    std::ranges::transform(m_groups, next.begin(), &Group::first);
    m_order.resize(size_t(entries.size()));
    for (qsizetype entry = 0; entry < entries.size(); ++entry)
        m_order[size_t(next[slot(entry)]++)] = qint32(entry);

    if (m_groups.back().count == 0)
        m_groups.pop_back();
}

std::vector<quint8> ChannelIndex::matches(const QString &text) const
{
    std::vector<quint8> matched = m_names.containing(text);
    if (!m_isGrouped)
        return matched;
    const std::vector<quint8> titles = m_titles.containing(text);
    for (size_t group = 0; group < m_groups.size(); ++group) {
        if (titles[group] == 0)
            continue;
        const auto entries = m_order.begin() + m_groups[group].first;
        std::for_each(entries, entries + m_groups[group].count,
                      [&](qint32 entry) { matched[size_t(entry)] = 1; });
    }
    return matched;
}

} // namespace lumaro
