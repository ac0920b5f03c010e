#pragma once

#include <QPalette>
#include <QStringView>

namespace lumaro {

enum class ThemeChoice {
    Dark,
    Light,
};

/// The theme for a desktop whose application palette is `palette`. `wish` ("dark" or "light", any
/// case) goes before the palette; other wishes are no wish. Where nobody chose a palette, so that
/// it is Qt's own stand-in, the theme is dark.
ThemeChoice chooseTheme(QStringView wish, const QPalette &palette);

} // namespace lumaro
