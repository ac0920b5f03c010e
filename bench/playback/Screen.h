#pragma once

#include <QColor>
#include <QRect>

#include <memory>
#include <optional>

struct _XDisplay;

namespace lumaro {

/// What can be seen on the X display that DISPLAY names, read from the screen itself and so the
/// same for every kind of player.
class Screen
{
public:
    /// Null when there is no such display.
    static std::unique_ptr<Screen> open();
    ~Screen();
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    /// True when a patch in the middle of the screen is all `color`, but for rounding.
    bool shows(QRgb color) const;
    /// A number that differs when the picture in the middle of the screen does.
    size_t picture() const;
    /// Where the top-level window over the middle of the screen is.
    std::optional<QRect> window() const;

private:
    explicit Screen(_XDisplay *display);

    QRect patch(int size) const;

    _XDisplay *m_display;
};

} // namespace lumaro
