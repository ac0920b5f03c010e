#include "playlist/PlaylistEntry.h"

#include <QHashFunctions>

namespace lumaro {

namespace {

template <typename T>
size_t hashOptional(const std::optional<T> &value, size_t seed)
{
    return value ? qHash(*value, seed) : seed;
}

} // namespace

size_t qHash(const PlaylistEntry &entry, size_t seed) noexcept
{
    return qHashMulti(seed, entry.id, entry.name, entry.url, hashOptional(entry.logoURL, 1),
                      hashOptional(entry.groupTitle, 2), hashOptional(entry.countryCode, 3));
}

} // namespace lumaro
