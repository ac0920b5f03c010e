#pragma once

#include <mpv/client.h>

namespace lumaro {

/// The value under `key`; null when there is none or `map` is no map.
const mpv_node *mapValue(const mpv_node &map, const char *key);

} // namespace lumaro
