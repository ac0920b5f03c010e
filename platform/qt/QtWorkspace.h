#pragma once

#include "platform/Workspace.h"

#include <QObject>

namespace lumaro {

/// The desktop by way of D-Bus (the interface org.freedesktop.FileManager1 of freedesktop.org's
/// File Manager DBus specification), or where nobody answers there, by opening the folder.
class QtWorkspace final : public QObject, public Workspace
{
    Q_OBJECT

public:
    explicit QtWorkspace(QObject *parent = nullptr);

    void activateFileViewer(const QList<QUrl> &files) override;
    void openInBrowser(const QUrl &page) override;
    void openScreenCaptureSettings() override;
};

} // namespace lumaro
