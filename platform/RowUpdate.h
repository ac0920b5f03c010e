#pragma once

#include <QtGlobal>

#include <algorithm>
#include <functional>

namespace lumaro {

/// The rows that differ between two states of a list, between what both begin and end with.
struct RowUpdate
{
    int first = 0;
    int removed = 0;
    int inserted = 0;

    template <typename List, typename IsSame = std::equal_to<>>
    static RowUpdate between(const List &before, const List &after, const IsSame &isSame = {})
    {
        const auto [firstBefore, firstAfter] = std::ranges::mismatch(before, after, isSame);
        const auto first = firstBefore - before.begin();
        qsizetype removed = before.end() - firstBefore;
        qsizetype inserted = after.end() - firstAfter;
        while (removed > 0 && inserted > 0
               && isSame(before[first + removed - 1], after[first + inserted - 1])) {
            --removed;
            --inserted;
        }
        return {int(first), int(removed), int(inserted)};
    }

    bool operator==(const RowUpdate &) const = default;
};

} // namespace lumaro
