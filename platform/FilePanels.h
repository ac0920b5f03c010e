#pragma once

#include "platform/Async.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

namespace lumaro {

/// What an open panel asks for: one existing file, never a folder.
struct OpenPanelRequest
{
    QString title;
    /// The accepting button's text; empty for the platform's own.
    QString prompt;
    /// What the accepted files are called, for the panel's type choice.
    QString typeDescription;
    /// File-name extensions without the dot; empty for all files.
    QStringList extensions;

    bool operator==(const OpenPanelRequest &) const = default;
};

/// What a save panel asks for: a file to write, in a folder that the user may make there.
struct SavePanelRequest
{
    QString title;
    /// The accepting button's text; empty for the platform's own.
    QString prompt;
    QString proposedName;
    /// What the written file is called, for the panel's type choice.
    QString typeDescription;
    /// The file-name extension without the dot, added to a name that has none; empty for any.
    QString extension;

    bool operator==(const SavePanelRequest &) const = default;
};

/// One optional text that a save panel asks for beside the file.
struct SavePanelAccessory
{
    QString label;
    QString placeholder;
    QString toolTip;
    QString hint;
    /// Where the panel begins.
    QUrl folder;

    bool operator==(const SavePanelAccessory &) const = default;
};

/// What the user chose in a save panel with an accessory.
struct SavePanelChoice
{
    QUrl file;
    QString text;
};

/// What a folder panel asks for: one existing folder.
struct FolderPanelRequest
{
    QString title;
    /// The accepting button's text; empty for the platform's own.
    QString prompt;
    /// Where the panel begins.
    QUrl folder;

    bool operator==(const FolderPanelRequest &) const = default;
};

/// The platform's panels for choosing files and folders. Main thread; one panel at a time.
class FilePanels
{
public:
    FilePanels() = default;
    FilePanels(const FilePanels &) = delete;
    FilePanels &operator=(const FilePanels &) = delete;
    virtual ~FilePanels() = default;

    /// The chosen file's URL; empty when the user cancels or another panel is already open.
    virtual Task<std::optional<QUrl>> chooseFile(OpenPanelRequest request,
                                                 std::stop_token stop) = 0;

    /// Where to write; what is there already, the user has agreed to replace. Empty when the user
    /// cancels or another panel is already open.
    virtual Task<std::optional<QUrl>> chooseNewFile(SavePanelRequest request,
                                                    std::stop_token stop) = 0;

    /// The same, with the accessory's text.
    virtual Task<std::optional<SavePanelChoice>>
    chooseNewFile(SavePanelRequest request, SavePanelAccessory accessory, std::stop_token stop) = 0;

    /// The chosen folder's URL; empty when the user cancels or another panel is already open.
    virtual Task<std::optional<QUrl>> chooseFolder(FolderPanelRequest request,
                                                   std::stop_token stop) = 0;
};

} // namespace lumaro
