#pragma once

#include <QByteArray>

namespace lumaro {

/// An extended-M3U channel list as IPTV panels send them, about 235 bytes a channel; the same for
/// the same `count` every time. Every channel has an #EXTINF line and an http address.
QByteArray channelList(int count);

} // namespace lumaro
