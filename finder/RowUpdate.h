#pragma once

#include <QtGlobal>

#include <algorithm>

namespace lumaro {

/// The rows that differ between two states of a list, between what both begin and end with.
struct RowUpdate
{
    int first = 0;
    int removed = 0;
    int inserted = 0;

    template <typename List>
    static RowUpdate between(const List &before, const List &after)
    {
        const auto [firstBefore, firstAfter] = std::ranges::mismatch(before, after);
        const auto first = firstBefore - before.begin();
        qsizetype removed = before.end() - firstBefore;
        qsizetype inserted = after.end() - firstAfter;
        while (removed > 0 && inserted > 0
               && before[first + removed - 1] == after[first + inserted - 1]) {
            --removed;
            --inserted;
        }
        return {int(first), int(removed), int(inserted)};
    }

    bool operator==(const RowUpdate &) const = default;
};

} // namespace lumaro
