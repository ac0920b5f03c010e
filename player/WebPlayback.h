#pragma once

#include <QVariant>

#include <optional>

namespace lumaro {

/// What a site's own player tells of itself, as far as it can be believed.
struct WebPlayback
{
    enum class Stage {
        NoPlayer, ///< what makes the player is not there
        Preparing,
        Ready,
    };

    Stage stage = Stage::NoPlayer;
    /// Seconds.
    double time = 0;
    /// Seconds; 0 while unknown and without an end.
    double duration = 0;
    /// Empty while it has yet to begin.
    std::optional<bool> isPlaying;
    /// Why it does not play, in the site's own numbers; 0 while it does.
    int error = 0;

    bool operator==(const WebPlayback &) const = default;
};

/// From the value of one of the scripts below. A page can answer anything; empty for what cannot
/// be meant.
std::optional<WebPlayback> readWebPlayback(const QVariant &answer);

/// For the page around YouTube's player, among its own scripts.
QString youTubePlaybackScript();
/// For any page, out of its reach: its first video element.
QString videoPlaybackScript();

/// What YouTube's error number (onError of its iframe player API) means for the user.
QString youTubeErrorText(int error);

} // namespace lumaro
