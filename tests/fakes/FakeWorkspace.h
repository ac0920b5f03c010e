#pragma once

#include "platform/Workspace.h"

namespace lumaro {

/// A desktop that only remembers what it was asked to show.
class FakeWorkspace final : public Workspace
{
public:
    void activateFileViewer(const QList<QUrl> &files) override { shown.append(files); }

    QList<QUrl> shown;
};

} // namespace lumaro
