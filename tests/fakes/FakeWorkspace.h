#pragma once

#include "platform/Workspace.h"

namespace lumaro {

/// A desktop that only remembers what it was asked to show.
class FakeWorkspace final : public Workspace
{
public:
    void activateFileViewer(const QList<QUrl> &files) override { shown.append(files); }

    void openInBrowser(const QUrl &page) override { opened.append(page); }

    void openScreenCaptureSettings() override { ++settingsOpened; }

    QList<QUrl> shown;
    QList<QUrl> opened;
    int settingsOpened = 0;
};

} // namespace lumaro
