#pragma once

#include <QString>

#include <array>
#include <optional>

namespace lumaro {

/// How the picture is shown: as it is, or as a tall 9:16 column.
enum class PortraitDisplayMode {
    normal, ///< the whole picture, letter-boxed
    fill, ///< its middle fills the column
    rotate, ///< turned a quarter clockwise, filling the column
    manual, ///< a part that the user chooses by dragging
    smart, ///< the part with the largest face
};

/// In the order of the menu.
inline constexpr std::array allPortraitDisplayModes{
    PortraitDisplayMode::normal, PortraitDisplayMode::fill, PortraitDisplayMode::rotate,
    PortraitDisplayMode::manual, PortraitDisplayMode::smart};

/// The mode's title, which also names it in the settings.
QString rawValue(PortraitDisplayMode mode);
/// The title in the user's language.
QString displayTitle(PortraitDisplayMode mode);

/// The mode that `rawValue` names exactly.
std::optional<PortraitDisplayMode> portraitDisplayMode(const QString &rawValue);

} // namespace lumaro
