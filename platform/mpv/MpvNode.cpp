#include "platform/mpv/MpvNode.h"

#include <cstring>

namespace lumaro {

const mpv_node *mapValue(const mpv_node &map, const char *key)
{
    if (map.format != MPV_FORMAT_NODE_MAP)
        return nullptr;
    const mpv_node_list &list = *map.u.list;
    for (int i = 0; i < list.num; ++i) {
        if (std::strcmp(list.keys[i], key) == 0)
            return &list.values[i];
    }
    return nullptr;
}

} // namespace lumaro
