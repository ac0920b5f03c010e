#include "platform/qt/QuickFilePanels.h"

namespace lumaro {

Task<std::optional<QUrl>> QuickFilePanels::chooseFile(OpenPanelRequest request,
                                                      std::stop_token stop)
{
    if (m_open || stop.stop_requested())
        co_return std::nullopt;
    m_request = std::move(request);
    const OneShot<std::optional<QUrl>> choice;
    m_open = choice;
    const std::stop_callback whenStopped(stop, [this] {
        Q_EMIT withdrawn();
        answer(std::nullopt);
    });
    Q_EMIT openRequested();
    co_return co_await choice;
}

QStringList QuickFilePanels::nameFilters() const
{
    // File names match whatever the case of their extension.
    QStringList patterns;
    for (const QString &extension : m_request.extensions)
        patterns << u"*." + extension << u"*." + extension.toUpper();
    return {m_request.typeDescription + u" (" + patterns.join(u' ') + u')',
            QStringLiteral("All files (*)")};
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
