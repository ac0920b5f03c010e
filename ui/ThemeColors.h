#pragma once

#include <QColor>

namespace lumaro {

/// The colours of one theme. What lies over the picture is the same in both themes: dark glass
/// with light text, because the picture does not follow the desktop.
struct ThemeColors
{
    QColor background; ///< windows and side panels
    QColor surface; ///< fields and cards on the background
    QColor surfaceRaised; ///< menus, dialogs, tool tips
    QColor stroke; ///< hairlines and outlines; translucent
    QColor fillHover; ///< laid over any surface under the pointer; translucent
    QColor fillPressed; ///< laid over any surface while pressed; translucent
    QColor text;
    QColor textSecondary;
    QColor accent; ///< the one accent: fills and focus rings
    QColor accentText; ///< the accent where it is text or an icon
    QColor accentSoft; ///< what is chosen; translucent
    QColor onAccent; ///< text on `accent`
    QColor danger; ///< errors, as text or icon
    QColor dangerFill; ///< destructive buttons
    QColor onDanger; ///< text on `dangerFill`
    QColor scrim; ///< over everything behind a dialog; translucent

    QColor overlay = QColor(20, 21, 25, 214); ///< over the picture; translucent
    QColor strokeOnOverlay = QColor(255, 255, 255, 28);
    QColor fillHoverOnOverlay = QColor(255, 255, 255, 30);
    QColor fillPressedOnOverlay = QColor(255, 255, 255, 52);
    QColor textOnOverlay = QColor(0xf6, 0xf7, 0xf9);
    QColor textSecondaryOnOverlay = QColor(0xcb, 0xce, 0xd6);
    QColor accentOnOverlay = QColor(0xa9, 0xb6, 0xff);
    QColor dangerOnOverlay = QColor(0xff, 0xa1, 0x9c);

    bool operator==(const ThemeColors &) const = default;

    static ThemeColors dark();
    static ThemeColors light();
};

} // namespace lumaro
