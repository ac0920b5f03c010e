#pragma once

#include <QSize>

#include <chrono>
#include <memory>
#include <vector>

namespace lumaro {

/// Time on the line of std::chrono::steady_clock.
using MediaTime = std::chrono::nanoseconds;

inline MediaTime mediaTimeNow()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// One captured picture, 32-bit BGRA. Copies share the pixels, which nobody changes.
struct VideoSample
{
    MediaTime presentationTime{};
    QSize size;
    /// The top row; empty while the pixels have not arrived.
    const uchar *topRow = nullptr;
    /// From one row to the one below it; negative where the rows lie from the bottom up.
    qsizetype bytesPerLine = 0;
    /// Keeps the pixels, and may be released on any thread.
    std::shared_ptr<const void> owner;

    bool isValid() const { return !size.isEmpty(); }
    bool isDataReady() const { return topRow != nullptr; }
};

/// A piece of captured sound: 32-bit floating-point samples, channels by turns.
struct AudioSample
{
    /// Of its first frame.
    MediaTime presentationTime{};
    int channels = 2;
    std::vector<float> data;

    bool isValid() const { return channels > 0 && data.size() % size_t(channels) == 0; }
    bool isDataReady() const { return !data.empty(); }
};

} // namespace lumaro
