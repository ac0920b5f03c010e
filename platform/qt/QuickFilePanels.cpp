#include "platform/qt/QuickFilePanels.h"

namespace lumaro {

namespace {

QString nameFilter(const QString &description, const QStringList &extensions)
{
    // File names match whatever the case of their extension.
    QStringList patterns;
    for (const QString &extension : extensions)
        patterns << u"*." + extension << u"*." + extension.toUpper();
    return description + u" (" + patterns.join(u' ') + u')';
}

} // namespace

Task<std::optional<QUrl>> QuickFilePanels::chooseFile(OpenPanelRequest request,
                                                      std::stop_token stop)
{
    return show({.title = request.title,
                 .prompt = request.prompt,
                 .nameFilters = {nameFilter(request.typeDescription, request.extensions),
                                 QStringLiteral("All files (*)")}},
                std::move(stop));
}

Task<std::optional<QUrl>> QuickFilePanels::chooseNewFile(SavePanelRequest request,
                                                         std::stop_token stop)
{
    return show({.title = request.title,
                 .prompt = request.prompt,
                 .nameFilters = {nameFilter(request.typeDescription, {request.extension})},
                 .isSaving = true,
                 .proposedName = request.proposedName,
                 .defaultSuffix = request.extension},
                std::move(stop));
}

Task<std::optional<QUrl>> QuickFilePanels::chooseFolder(FolderPanelRequest request,
                                                        std::stop_token stop)
{
    return show({.title = request.title,
                 .prompt = request.prompt,
                 .isChoosingFolder = true,
                 .folder = request.folder},
                std::move(stop));
}

Task<std::optional<QUrl>> QuickFilePanels::show(Panel panel, std::stop_token stop)
{
    if (m_open || stop.stop_requested())
        co_return std::nullopt;
    m_panel = std::move(panel);
    const OneShot<std::optional<QUrl>> choice;
    m_open = choice;
    const std::stop_callback whenStopped(stop, [this] {
        Q_EMIT withdrawn();
        answer(std::nullopt);
    });
    Q_EMIT openRequested();
    co_return co_await choice;
}

void QuickFilePanels::accept(const QUrl &file)
{
    answer(file);
}

void QuickFilePanels::reject()
{
    answer(std::nullopt);
}

void QuickFilePanels::answer(const std::optional<QUrl> &file)
{
    if (const auto open = std::exchange(m_open, std::nullopt))
        open->complete(file);
}

} // namespace lumaro
