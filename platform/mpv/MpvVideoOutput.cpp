#include "platform/mpv/MpvVideoOutput.h"

#include "platform/mpv/MpvNode.h"

#include <cstring>

namespace lumaro {

namespace {

/// A copy takes four bytes for each, several times over; 8K video is within it.
constexpr qint64 mostPixels = 8192 * 4608;

std::optional<int64_t> integer(const mpv_node *node)
{
    if (!node || node->format != MPV_FORMAT_INT64)
        return std::nullopt;
    return node->u.int64;
}

std::optional<PixelBuffer> pixelBuffer(const mpv_node &screenshot)
{
    const auto width = integer(mapValue(screenshot, "w"));
    const auto height = integer(mapValue(screenshot, "h"));
    const auto stride = integer(mapValue(screenshot, "stride"));
    const mpv_node *format = mapValue(screenshot, "format");
    const mpv_node *data = mapValue(screenshot, "data");
    if (!width || !height || !stride || !format || format->format != MPV_FORMAT_STRING
        || std::strcmp(format->u.string, "bgr0") != 0 || !data
        || data->format != MPV_FORMAT_BYTE_ARRAY)
        return std::nullopt;
    const mpv_byte_array &bytes = *data->u.ba;
    if (*width <= 0 || *height <= 0 || *stride < *width * 4
        || int64_t(bytes.size) < *stride * *height)
        return std::nullopt;
    return PixelBuffer{.width = int(*width),
                       .height = int(*height),
                       .bytesPerLine = *stride,
                       .bytes =
                           QByteArray(static_cast<const char *>(bytes.data), *stride * *height)};
}

} // namespace

MpvVideoOutput::MpvVideoOutput(MpvMediaPlayer *player, std::shared_ptr<MpvCore> core, quint64 item)
    : m_player(player)
    , m_core(std::move(core))
    , m_item(item)
{
}

MpvVideoOutput::~MpvVideoOutput()
{
    if (m_client)
        mpv_destroy(m_client);
}

bool MpvVideoOutput::hasNewPixelBuffer(double itemTime) const
{
    if (!m_player || m_item == 0 || m_player->currentItem() != m_item || m_player->isSeeking())
        return false;
    const QSize size = m_player->presentationSize();
    return !size.isEmpty() && qint64(size.width()) * size.height() <= mostPixels
        && itemTime != m_copiedTime;
}

std::optional<PixelBuffer> MpvVideoOutput::copyPixelBuffer(double itemTime)
{
    if (!m_client && m_core)
        m_client = mpv_create_client(m_core->handle(), nullptr);
    if (!m_client)
        return std::nullopt;
    m_copiedTime = itemTime;
    const char *arguments[] = {"screenshot-raw", "video", nullptr};
    mpv_node screenshot{};
    if (mpv_command_ret(m_client, arguments, &screenshot) < 0)
        return std::nullopt;
    auto picture = pixelBuffer(screenshot);
    mpv_free_node_contents(&screenshot);
    return picture;
}

} // namespace lumaro
