#pragma once

#include "player/MediaSources.h"

namespace lumaro {

/// The page around YouTube's own player (YouTube Player API Reference for iframe Embeds) that
/// starts `content` and takes the commands of YouTubePlayerRegistry. To be shown as coming from
/// `services.product`.
QString youTubePage(const YouTubeContent &content, const WebServices &services);

} // namespace lumaro
