// Reads any bytes as an HLS playlist of both kinds and walks what comes out.

#include "download/MediaPlaylist.h"

#include <cstddef>
#include <cstdint>

using namespace lumaro;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QUrl base(QStringLiteral("https://host/folder/list.m3u8"));
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const Variant &variant : parseVariants(text, base)) {
        if (!variant.url.isValid() || variant.url.isRelative())
            __builtin_trap();
    }
    if (const auto playlist = parseMediaPlaylist("#EXTM3U\n" + text, base)) {
        SegmentList::Reader segments(playlist->segments);
        qsizetype count = 0;
        while (const auto url = segments.next())
            ++count;
        if (count != playlist->segments.size())
            __builtin_trap();
    }
    return 0;
}
