#pragma once

#include "platform/FilePanels.h"

#include <QList>

#include <functional>
#include <utility>

namespace lumaro {

/// A panel in which the user has already made up their mind.
class FakeFilePanels final : public FilePanels
{
public:
    Task<std::optional<QUrl>> chooseFile(OpenPanelRequest request, std::stop_token) override
    {
        if (m_isOpen)
            co_return std::nullopt;
        requests.append(request);
        m_isOpen = true;
        if (whileOpen)
            whileOpen();
        m_isOpen = false;
        co_return std::as_const(choice);
    }

    Task<std::optional<QUrl>> chooseNewFile(SavePanelRequest request, std::stop_token) override
    {
        saveRequests.append(request);
        if (whileOpen)
            std::exchange(whileOpen, nullptr)();
        // Otherwise the coroutine would move it out of here.
        co_return std::as_const(choice);
    }

    Task<std::optional<SavePanelChoice>>
    chooseNewFile(SavePanelRequest request, SavePanelAccessory accessory, std::stop_token) override
    {
        saveRequests.append(request);
        accessories.append(accessory);
        if (whileOpen)
            whileOpen();
        if (!choice)
            co_return std::nullopt;
        co_return SavePanelChoice{.file = *choice, .text = text};
    }

    Task<std::optional<QUrl>> chooseFolder(FolderPanelRequest request, std::stop_token) override
    {
        folderRequests.append(request);
        co_return std::as_const(choice);
    }

    /// What the user picks; empty for Cancel.
    std::optional<QUrl> choice;
    /// What happens before the user picks a file, in a panel that asks for it.
    std::function<void()> whileOpen;
    /// What the user types into a panel's accessory.
    QString text;
    QList<SavePanelAccessory> accessories;
    QList<OpenPanelRequest> requests;
    QList<SavePanelRequest> saveRequests;
    QList<FolderPanelRequest> folderRequests;

private:
    bool m_isOpen = false;
};

} // namespace lumaro
