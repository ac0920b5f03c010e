#include "ui/ThemeChoice.h"

namespace lumaro {

namespace {

// Without a platform theme Qt paints with this light palette. Nobody asked for it.
bool isStandIn(const QPalette &palette)
{
    return palette.color(QPalette::Window) == QColor(0xef, 0xef, 0xef)
        && palette.color(QPalette::Highlight) == QColor(0x30, 0x8c, 0xc6);
}

} // namespace

ThemeChoice chooseTheme(QStringView wish, std::optional<ThemeChoice> desktop,
                        const QPalette &palette)
{
    if (wish.compare(QStringLiteral("dark"), Qt::CaseInsensitive) == 0)
        return ThemeChoice::Dark;
    if (wish.compare(QStringLiteral("light"), Qt::CaseInsensitive) == 0)
        return ThemeChoice::Light;
    if (desktop)
        return *desktop;
    if (isStandIn(palette))
        return ThemeChoice::Dark;
    const float window = palette.color(QPalette::Window).lightnessF();
    const float text = palette.color(QPalette::WindowText).lightnessF();
    return window > text ? ThemeChoice::Light : ThemeChoice::Dark;
}

} // namespace lumaro
