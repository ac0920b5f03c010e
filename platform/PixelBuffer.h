#pragma once

#include <QByteArray>

namespace lumaro {

/// A picture in memory: rows from the top, each pixel blue, green, red and a byte without meaning.
struct PixelBuffer
{
    int width = 0;
    int height = 0;
    qsizetype bytesPerLine = 0;
    QByteArray bytes;
};

} // namespace lumaro
