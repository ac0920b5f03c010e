#include "platform/qt/QuickFilePanels.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

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

QUrl folderOf(const QUrl &file)
{
    return file.adjusted(QUrl::RemoveFilename | QUrl::StripTrailingSlash);
}

/// Where a name was typed, Qt's own panel (6.4) forgets the scheme.
QUrl withScheme(const QUrl &file)
{
    return file.isRelative() ? QUrl::fromLocalFile(QUrl::fromPercentEncoding(file.toEncoded()))
                             : file;
}

} // namespace

Task<std::optional<QUrl>> QuickFilePanels::chooseFile(OpenPanelRequest request,
                                                      std::stop_token stop)
{
    QStringList filters{QuickFilePanels::tr("All files (*)")};
    if (!request.extensions.isEmpty())
        filters.prepend(nameFilter(request.typeDescription, request.extensions));
    return show({.kind = Kind::File,
                 .title = request.title,
                 .prompt = request.prompt,
                 .nameFilters = std::move(filters)},
                std::move(stop));
}

Task<std::optional<QUrl>> QuickFilePanels::chooseNewFile(SavePanelRequest request,
                                                         std::stop_token stop)
{
    const QUrl folder = m_newFileFolder.isEmpty()
        ? QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        : m_newFileFolder;
    return show(
        {.kind = Kind::NewFile,
         .title = request.title,
         .prompt = request.prompt,
         .nameFilters = request.extension.isEmpty()
             ? QStringList()
             : QStringList{nameFilter(request.typeDescription, {request.extension})},
         .folder = folder,
         .proposedFile = QUrl::fromLocalFile(folder.toLocalFile() + u'/' + request.proposedName),
         .defaultSuffix = request.extension},
        std::move(stop));
}

Task<std::optional<SavePanelChoice>> QuickFilePanels::chooseNewFile(SavePanelRequest request,
                                                                    SavePanelAccessory accessory,
                                                                    std::stop_token stop)
{
    if (m_open)
        co_return std::nullopt;
    const QUrl folder = accessory.folder;
    m_accessoryText.clear();
    Q_EMIT accessoryTextChanged();
    auto shown = show(
        {.kind = Kind::NewFileAndText,
         .title = request.title,
         .prompt = request.prompt,
         .folder = folder,
         .proposedFile = QUrl::fromLocalFile(folder.toLocalFile() + u'/' + request.proposedName),
         .defaultSuffix = request.extension,
         .accessory = std::move(accessory)},
        std::move(stop));
    const auto file = co_await shown;
    if (!file)
        co_return std::nullopt;
    co_return SavePanelChoice{.file = *file, .text = m_accessoryText};
}

QUrl QuickFilePanels::fileIn(const QUrl &folder, const QString &name) const
{
    const QString suffix = u'.' + m_panel.defaultSuffix;
    // A name is no path.
    QString file = name.trimmed().replace(u'/', u'-');
    if (!file.endsWith(suffix, Qt::CaseInsensitive))
        file += suffix;
    return QUrl::fromLocalFile(folder.toLocalFile() + u'/' + file);
}

Task<std::optional<QUrl>> QuickFilePanels::chooseFolder(FolderPanelRequest request,
                                                        std::stop_token stop)
{
    return show({.kind = Kind::Folder,
                 .title = request.title,
                 .prompt = request.prompt,
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
    Q_EMIT isOpenChanged();
    const std::stop_callback whenStopped(stop, [this] {
        Q_EMIT withdrawn();
        answer(std::nullopt);
    });
    Q_EMIT panelChanged();
    Q_EMIT openRequested();
    co_return co_await choice;
}

QString QuickFilePanels::pathOf(const QUrl &folder) const
{
    return QDir::toNativeSeparators(folder.toLocalFile());
}

void QuickFilePanels::accept(const QUrl &chosen)
{
    const QUrl file = withScheme(chosen);
    const bool isNewFile = m_panel.kind == Kind::NewFile || m_panel.kind == Kind::NewFileAndText;
    if (m_panel.kind == Kind::NewFile)
        m_newFileFolder = folderOf(file);
    if (!isNewFile || !QFileInfo::exists(file.toLocalFile()))
        return answer(file);
    m_panel.folder = folderOf(file);
    m_panel.proposedFile = file;
    Q_EMIT panelChanged();
    Q_EMIT replacingAsked();
}

void QuickFilePanels::replace()
{
    answer(m_panel.proposedFile);
}

void QuickFilePanels::chooseAnother()
{
    if (m_open)
        Q_EMIT openRequested();
}

void QuickFilePanels::reject()
{
    answer(std::nullopt);
}

void QuickFilePanels::answer(const std::optional<QUrl> &file)
{
    if (const auto open = std::exchange(m_open, std::nullopt)) {
        Q_EMIT isOpenChanged();
        open->complete(file);
    }
}

} // namespace lumaro
