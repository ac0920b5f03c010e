#pragma once

#include "platform/FilePanels.h"

#include <QObject>

namespace lumaro {

/// The panels as a view shows them: the view waits for openRequested, shows the panel that the
/// properties describe, and ends it with accept() or reject().
class QuickFilePanels : public QObject, public FilePanels
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY openRequested)
    Q_PROPERTY(QString prompt READ prompt NOTIFY openRequested)
    /// Name filters as Qt's dialogs write them.
    Q_PROPERTY(QStringList nameFilters READ nameFilters NOTIFY openRequested)
    /// The panel asks where to write rather than what to read.
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY openRequested)
    /// The file name that a saving panel begins with.
    Q_PROPERTY(QString proposedName READ proposedName NOTIFY openRequested)
    /// The panel asks for a folder rather than a file.
    Q_PROPERTY(bool isChoosingFolder READ isChoosingFolder NOTIFY openRequested)
    /// Where a folder panel begins.
    Q_PROPERTY(QUrl folder READ folder NOTIFY openRequested)
    /// The extension that a saving panel adds to a name without one.
    Q_PROPERTY(QString defaultSuffix READ defaultSuffix NOTIFY openRequested)

public:
    using QObject::QObject;

    Task<std::optional<QUrl>> chooseFile(OpenPanelRequest request, std::stop_token stop) override;

    Task<std::optional<QUrl>> chooseNewFile(SavePanelRequest request,
                                            std::stop_token stop) override;

    Task<std::optional<QUrl>> chooseFolder(FolderPanelRequest request,
                                           std::stop_token stop) override;

    const QString &title() const { return m_panel.title; }
    const QString &prompt() const { return m_panel.prompt; }
    QStringList nameFilters() const { return m_panel.nameFilters; }
    bool isSaving() const { return m_panel.isSaving; }
    const QString &proposedName() const { return m_panel.proposedName; }
    const QString &defaultSuffix() const { return m_panel.defaultSuffix; }
    bool isChoosingFolder() const { return m_panel.isChoosingFolder; }
    const QUrl &folder() const { return m_panel.folder; }

    Q_INVOKABLE void accept(const QUrl &file);
    Q_INVOKABLE void reject();

Q_SIGNALS:
    void openRequested();
    /// Whoever asked no longer wants an answer.
    void withdrawn();

private:
    struct Panel
    {
        QString title;
        QString prompt;
        QStringList nameFilters{};
        bool isSaving = false;
        QString proposedName{};
        QString defaultSuffix{};
        bool isChoosingFolder = false;
        QUrl folder{};
    };

    Task<std::optional<QUrl>> show(Panel panel, std::stop_token stop);
    void answer(const std::optional<QUrl> &file);

    Panel m_panel;
    std::optional<OneShot<std::optional<QUrl>>> m_open;
};

} // namespace lumaro
