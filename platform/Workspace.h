#pragma once

#include <QList>
#include <QUrl>

namespace lumaro {

/// The desktop around the application. Main thread; nothing blocks.
class Workspace
{
public:
    Workspace() = default;
    Workspace(const Workspace &) = delete;
    Workspace &operator=(const Workspace &) = delete;
    virtual ~Workspace() = default;

    /// Brings the platform's file browser to the front with `files` selected, or at least with
    /// their folder open.
    virtual void activateFileViewer(const QList<QUrl> &files) = 0;

    /// Opens a page of the web in the browser that the user has chosen.
    virtual void openInBrowser(const QUrl &page) = 0;

    /// Shows where the user allows programs to capture the screen.
    virtual void openScreenCaptureSettings() = 0;
};

} // namespace lumaro
