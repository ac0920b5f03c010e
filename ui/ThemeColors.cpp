#include "ui/ThemeColors.h"

namespace lumaro {

ThemeColors ThemeColors::dark()
{
    return {
        .background = QColor(0x12, 0x13, 0x16),
        .surface = QColor(0x1c, 0x1d, 0x22),
        .surfaceRaised = QColor(0x23, 0x25, 0x2b),
        .stroke = QColor(255, 255, 255, 24),
        .fillHover = QColor(255, 255, 255, 16),
        .fillPressed = QColor(255, 255, 255, 30),
        .text = QColor(0xf1, 0xf2, 0xf5),
        .textSecondary = QColor(0xa9, 0xad, 0xb8),
        .accent = QColor(0x9a, 0xa9, 0xff),
        .accentText = QColor(0xa9, 0xb6, 0xff),
        .accentSoft = QColor(0x9a, 0xa9, 0xff, 42),
        .onAccent = QColor(0x11, 0x13, 0x24),
        .danger = QColor(0xff, 0x8f, 0x89),
        .dangerFill = QColor(0xff, 0x8f, 0x89),
        .onDanger = QColor(0x2a, 0x0a, 0x09),
        .scrim = QColor(0, 0, 0, 140),
    };
}

ThemeColors ThemeColors::light()
{
    return {
        .background = QColor(0xf5, 0xf5, 0xf7),
        .surface = QColor(0xff, 0xff, 0xff),
        .surfaceRaised = QColor(0xff, 0xff, 0xff),
        .stroke = QColor(0, 0, 0, 30),
        .fillHover = QColor(0, 0, 0, 13),
        .fillPressed = QColor(0, 0, 0, 26),
        .text = QColor(0x18, 0x19, 0x1d),
        .textSecondary = QColor(0x5c, 0x60, 0x6b),
        .accent = QColor(0x4a, 0x56, 0xd6),
        .accentText = QColor(0x41, 0x4c, 0xc8),
        .accentSoft = QColor(0x4a, 0x56, 0xd6, 26),
        .onAccent = QColor(0xff, 0xff, 0xff),
        .danger = QColor(0xb3, 0x26, 0x1e),
        .dangerFill = QColor(0xc0, 0x2b, 0x24),
        .onDanger = QColor(0xff, 0xff, 0xff),
        .scrim = QColor(10, 11, 16, 90),
    };
}

} // namespace lumaro
