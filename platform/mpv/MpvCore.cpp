#include "platform/mpv/MpvCore.h"

#include <array>
#include <utility>

namespace lumaro {

namespace {

constexpr std::array<std::pair<const char *, const char *>, 23> options{{
    {"vo", "libmpv"},
    // The user's own mpv settings and scripts are for mpv.
    {"config", "no"},
    {"load-scripts", "no"},
    {"ytdl", "no"},
    {"osc", "no"},
    {"load-stats-overlay", "no"},
    {"load-osd-console", "no"},
    // What comes from the network names no local files.
    {"load-unsafe-playlists", "no"},
    {"terminal", "no"},
    {"input-default-bindings", "no"},
    {"resume-playback", "no"},
    {"idle", "yes"},
    {"pause", "yes"},
    // The last picture stays; pausing at the end is the player's own doing.
    {"keep-open", "yes"},
    {"keep-open-pause", "no"},
    {"hr-seek", "yes"},
    // Where a server sends no parts of a file, within what has arrived.
    {"force-seekable", "yes"},
    {"hwdec", "auto-safe"},
    // The scene graph decides when a frame is shown.
    {"video-timing-offset", "0"},
    {"network-timeout", "30"},
    // Without a sound card there is still a clock to play by.
    {"audio-fallback-to-null", "yes"},
    {"audio-client-name", "Lumaro"},
    {"user-agent", "Lumaro/0.1"},
}};

} // namespace

std::shared_ptr<MpvCore> MpvCore::create()
{
    mpv_handle *handle = mpv_create();
    if (!handle)
        return nullptr;
    auto core = std::shared_ptr<MpvCore>(new MpvCore(handle));
    for (const auto &[name, value] : options)
        mpv_set_option_string(handle, name, value);
    if (mpv_initialize(handle) < 0)
        return nullptr;
    return core;
}

MpvCore::~MpvCore()
{
    mpv_terminate_destroy(m_handle);
}

} // namespace lumaro
