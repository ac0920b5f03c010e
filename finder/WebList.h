#pragma once

#include "finder/SnifferSavedWebsite.h"

#include <expected>

namespace lumaro {

/// Favourites and history in one list, the last saved or visited first, no page twice.
class WebList
{
public:
    static constexpr qsizetype maximumHistory = 100;
    /// In UTF-16 code units; a page may call itself anything.
    static constexpr qsizetype maximumTitleLength = 1000;

    WebList() = default;
    /// In the order given; records of the same page become one.
    explicit WebList(const QList<SnifferSavedWebsite> &websites);

    const QList<SnifferSavedWebsite> &websites() const { return m_websites; }
    /// The record of the page at `address`; -1 for none.
    qsizetype find(const QString &address) const;
    qsizetype find(const QUuid &id) const;

    /// The record as it is to be, in its place or at the front.
    void replace(qsizetype index, const SnifferSavedWebsite &website);
    void moveToFront(qsizetype index);
    void prepend(const SnifferSavedWebsite &website);
    void remove(qsizetype index);
    void keepFavoritesOnly();

    /// Adds what `other` knows. Of a page that both know, a favourite stays one, the higher visit
    /// count and the later time count, and of the titles the later one that says something; so
    /// merging a list into itself changes nothing.
    void merge(const WebList &other);
    /// Leaves the newest entries of the history, and every favourite.
    void trimHistory();

private:
    void append(const SnifferSavedWebsite &website, const QString &key);
    template <typename Keep>
    void filter(Keep keep);

    QList<SnifferSavedWebsite> m_websites;
    /// What tells the pages apart, in the websites' order.
    QList<QString> m_keys;
};

} // namespace lumaro
