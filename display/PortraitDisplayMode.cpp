#include "display/PortraitDisplayMode.h"

#include <QCoreApplication>

#include <algorithm>

namespace lumaro {

namespace {

const char *title(PortraitDisplayMode mode)
{
    switch (mode) {
    case PortraitDisplayMode::normal:
        return QT_TRANSLATE_NOOP("PortraitDisplayMode", "Normal");
    case PortraitDisplayMode::fill:
        return QT_TRANSLATE_NOOP("PortraitDisplayMode", "Portrait Fill");
    case PortraitDisplayMode::rotate:
        return QT_TRANSLATE_NOOP("PortraitDisplayMode", "Portrait Rotate 90°");
    case PortraitDisplayMode::manual:
        return QT_TRANSLATE_NOOP("PortraitDisplayMode", "Manual Reframe");
    case PortraitDisplayMode::smart:
        return QT_TRANSLATE_NOOP("PortraitDisplayMode", "Smart Reframe");
    }
    Q_UNREACHABLE();
}

} // namespace

QString rawValue(PortraitDisplayMode mode)
{
    return QString::fromUtf8(title(mode));
}

QString displayTitle(PortraitDisplayMode mode)
{
    return QCoreApplication::translate("PortraitDisplayMode", title(mode));
}

std::optional<PortraitDisplayMode> portraitDisplayMode(const QString &title)
{
    const auto mode = std::ranges::find(allPortraitDisplayModes, title, &rawValue);
    return mode == allPortraitDisplayModes.end() ? std::nullopt : std::optional(*mode);
}

} // namespace lumaro
