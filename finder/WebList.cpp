#include "finder/WebList.h"

#include "finder/WebAddress.h"

#include <QSet>

#include <algorithm>
#include <numeric>

namespace lumaro {

namespace {

bool saysSomething(const SnifferSavedWebsite &website)
{
    const QString title = website.title.trimmed();
    return !title.isEmpty() && title != website.urlString;
}

SnifferSavedWebsite merged(const SnifferSavedWebsite &own, const SnifferSavedWebsite &other)
{
    const bool otherIsNewer = other.savedAt > own.savedAt;
    SnifferSavedWebsite website = own;
    website.isFavorite = own.isFavorite || other.isFavorite;
    website.visitCount = std::max(own.visitCount, other.visitCount);
    website.savedAt = std::max(own.savedAt, other.savedAt);
    if (saysSomething(other) && (otherIsNewer || !saysSomething(own)))
        website.title = other.title;
    return website;
}

} // namespace

WebList::WebList(const QList<SnifferSavedWebsite> &websites)
{
    QHash<QString, qsizetype> places;
    for (const SnifferSavedWebsite &website : websites) {
        const QString key = webAddressKey(website.urlString);
        const auto place = places.constFind(key);
        if (place != places.cend()) {
            m_websites[*place] = merged(m_websites[*place], website);
        } else {
            places.insert(key, m_websites.size());
            append(website, key);
        }
    }
}

void WebList::append(const SnifferSavedWebsite &website, const QString &key)
{
    m_websites.append(website);
    m_websites.last().title.truncate(maximumTitleLength);
    m_keys.append(key);
}

qsizetype WebList::find(const QString &address) const
{
    return m_keys.indexOf(webAddressKey(address));
}

qsizetype WebList::find(const QUuid &id) const
{
    const auto found = std::ranges::find(m_websites, id, &SnifferSavedWebsite::id);
    return found == m_websites.cend() ? -1 : found - m_websites.cbegin();
}

void WebList::replace(qsizetype index, const SnifferSavedWebsite &website)
{
    m_websites[index] = website;
    m_websites[index].title.truncate(maximumTitleLength);
}

void WebList::moveToFront(qsizetype index)
{
    m_websites.move(index, 0);
    m_keys.move(index, 0);
}

void WebList::prepend(const SnifferSavedWebsite &website)
{
    append(website, webAddressKey(website.urlString));
    moveToFront(m_websites.size() - 1);
}

void WebList::remove(qsizetype index)
{
    m_websites.removeAt(index);
    m_keys.removeAt(index);
}

template <typename Keep>
void WebList::filter(Keep keep)
{
    const WebList before = std::exchange(*this, {});
    for (qsizetype i = 0; i < before.m_websites.size(); ++i) {
        if (keep(i, before.m_websites[i]))
            append(before.m_websites[i], before.m_keys[i]);
    }
}

void WebList::keepFavoritesOnly()
{
    filter([](qsizetype, const SnifferSavedWebsite &website) { return website.isFavorite; });
}

void WebList::merge(const WebList &other)
{
    QHash<QString, qsizetype> places;
    QSet<QUuid> ids;
    for (qsizetype i = 0; i < m_keys.size(); ++i) {
        places.insert(m_keys[i], i);
        ids.insert(m_websites[i].id);
    }
    for (qsizetype i = 0; i < other.m_keys.size(); ++i) {
        SnifferSavedWebsite website = other.m_websites[i];
        const auto place = places.constFind(other.m_keys[i]);
        if (place != places.cend()) {
            m_websites[*place] = merged(m_websites[*place], website);
            continue;
        }
        if (ids.contains(website.id))
            website.id = QUuid::createUuid();
        ids.insert(website.id);
        append(website, other.m_keys[i]);
    }

    std::vector<qsizetype> order(size_t(m_websites.size()));
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, std::ranges::greater(),
                             [this](qsizetype i) { return m_websites[i].savedAt; });
    const WebList unsorted = std::exchange(*this, {});
    for (const qsizetype i : order)
        append(unsorted.m_websites[i], unsorted.m_keys[i]);
}

void WebList::trimHistory()
{
    std::vector<qsizetype> history;
    for (qsizetype i = 0; i < m_websites.size(); ++i) {
        if (!m_websites[i].isFavorite)
            history.push_back(i);
    }
    if (std::ssize(history) <= maximumHistory)
        return;
    std::ranges::stable_sort(history, std::ranges::greater(),
                             [this](qsizetype i) { return m_websites[i].savedAt; });
    const QSet<qsizetype> old(history.begin() + maximumHistory, history.end());
    filter([&old](qsizetype i, const SnifferSavedWebsite &) { return !old.contains(i); });
}

} // namespace lumaro
