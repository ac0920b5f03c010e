#pragma once

#include <QUrl>

#include <functional>

namespace lumaro {

/// A page, or a frame in it, is about to go somewhere.
struct NavigationAction
{
    enum class Target {
        MainFrame,
        SubFrame,
        NewWindow,
    };

    QUrl url;
    Target target = Target::MainFrame;
    bool isLinkClick = false;
    /// The page itself asks rather than a frame in it.
    bool sourceIsMainFrame = true;
};

/// Whether a web view may do so.
using NavigationPolicy = std::function<bool(const NavigationAction &action)>;

} // namespace lumaro
