#include "display/PortraitDisplayMode.h"

#include <algorithm>

namespace lumaro {

QString rawValue(PortraitDisplayMode mode)
{
    switch (mode) {
    case PortraitDisplayMode::normal:
        return QStringLiteral("Normal");
    case PortraitDisplayMode::fill:
        return QStringLiteral("Portrait Fill");
    case PortraitDisplayMode::rotate:
        return QStringLiteral("Portrait Rotate 90\u00B0");
    case PortraitDisplayMode::manual:
        return QStringLiteral("Manual Reframe");
    case PortraitDisplayMode::smart:
        return QStringLiteral("Smart Reframe");
    }
    Q_UNREACHABLE();
}

std::optional<PortraitDisplayMode> portraitDisplayMode(const QString &title)
{
    const auto mode = std::ranges::find(allPortraitDisplayModes, title, &rawValue);
    return mode == allPortraitDisplayModes.end() ? std::nullopt : std::optional(*mode);
}

} // namespace lumaro
