#pragma once

#include <QPalette>
#include <QStringView>

#include <optional>

namespace lumaro {

enum class ThemeChoice {
    Dark,
    Light,
};

/// The theme for a desktop that asks for `desktop`, if for anything, and whose application palette
/// is `palette`. `wish` ("dark" or "light", any case) goes before both, and the desktop's words
/// before its palette; other wishes are no wish. Where nobody chose a palette, so that it is Qt's
/// own stand-in, the theme is dark.
ThemeChoice chooseTheme(QStringView wish, std::optional<ThemeChoice> desktop,
                        const QPalette &palette);

} // namespace lumaro
