#pragma once

#include <mpv/client.h>

#include <memory>

namespace lumaro {

/// Owns a libmpv handle. The render context must be freed before the handle, and the two live on
/// different threads, so both the player and the renderer share this.
class MpvCore
{
public:
    /// Makes and initialises a handle; null when libmpv refuses.
    static std::shared_ptr<MpvCore> create();

    ~MpvCore();
    MpvCore(const MpvCore &) = delete;
    MpvCore &operator=(const MpvCore &) = delete;

    mpv_handle *handle() const { return m_handle; }

private:
    explicit MpvCore(mpv_handle *handle)
        : m_handle(handle)
    {
    }

    mpv_handle *m_handle;
};

} // namespace lumaro
