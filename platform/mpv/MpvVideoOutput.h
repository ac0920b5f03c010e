#pragma once

#include "platform/VideoOutput.h"
#include "platform/mpv/MpvMediaPlayer.h"

#include <QPointer>

namespace lumaro {

/// Copies the picture that libmpv shows, in the video's own size, whatever is drawn of it.
class MpvVideoOutput final : public VideoOutput
{
public:
    /// For the item that `player` numbers `item`, 0 for none.
    MpvVideoOutput(MpvMediaPlayer *player, std::shared_ptr<MpvCore> core, quint64 item);
    ~MpvVideoOutput() override;

    bool hasNewPixelBuffer(double itemTime) const override;
    std::optional<PixelBuffer> copyPixelBuffer(double itemTime) override;

private:
    const QPointer<MpvMediaPlayer> m_player;
    const std::shared_ptr<MpvCore> m_core;
    const quint64 m_item;
    std::atomic<double> m_copiedTime = -1;
    /// Waits for libmpv, which the main thread's own handle must not.
    mpv_handle *m_client = nullptr;
};

} // namespace lumaro
