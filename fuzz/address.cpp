// Cleans any text as an address, typed or visited; what comes out must be one, and stay as it is.

#include "finder/WebAddress.h"
#include "player/MediaSources.h"

#include <cstddef>
#include <cstdint>

using namespace lumaro;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    if (const auto address = normalizedWebAddress(text)) {
        if (normalizedWebAddress(*address) != address)
            __builtin_trap();
        webAddressKey(*address);
    }
    if (const auto url = remoteUrl(normalizedRemoteAddress(text))) {
        if (url->scheme() != u"http" && url->scheme() != u"https")
            __builtin_trap();
        if (const auto video = YouTubeContent::fromUrl(*url); video && video->id().isEmpty())
            __builtin_trap();
        if (const auto video = OKVideoContent::fromUrl(*url); video && video->videoID.isEmpty())
            __builtin_trap();
    }
    return 0;
}
