#pragma once

#include "platform/FilePanels.h"

#include <QObject>

namespace lumaro {

/// The panels as a view shows them: the view waits for openRequested, shows the panel that the
/// properties describe, and ends it with accept() or reject().
class QuickFilePanels : public QObject, public FilePanels
{
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged)
    Q_PROPERTY(Kind kind READ kind NOTIFY panelChanged)
    Q_PROPERTY(QString title READ title NOTIFY panelChanged)
    Q_PROPERTY(QString prompt READ prompt NOTIFY panelChanged)
    /// Name filters as Qt's dialogs write them.
    Q_PROPERTY(QStringList nameFilters READ nameFilters NOTIFY panelChanged)
    /// Where a panel for a folder or a new file begins.
    Q_PROPERTY(QUrl folder READ folder NOTIFY panelChanged)
    /// What a panel for a new file begins with; what the user chose once replacing is asked.
    Q_PROPERTY(QUrl proposedFile READ proposedFile NOTIFY panelChanged)
    Q_PROPERTY(QString proposedName READ proposedName NOTIFY panelChanged)
    /// The extension that such a panel adds to a name without one.
    Q_PROPERTY(QString defaultSuffix READ defaultSuffix NOTIFY panelChanged)
    /// The texts around the further text, and that text itself.
    Q_PROPERTY(QString accessoryLabel READ accessoryLabel NOTIFY panelChanged)
    Q_PROPERTY(QString accessoryPlaceholder READ accessoryPlaceholder NOTIFY panelChanged)
    Q_PROPERTY(QString accessoryToolTip READ accessoryToolTip NOTIFY panelChanged)
    Q_PROPERTY(QString accessoryHint READ accessoryHint NOTIFY panelChanged)
    Q_PROPERTY(QString accessoryText MEMBER m_accessoryText NOTIFY accessoryTextChanged)

public:
    enum class Kind {
        File, ///< an existing file
        NewFile, ///< a file to write
        NewFileAndText, ///< a file to write, and one text more
        Folder, ///< an existing folder
    };
    Q_ENUM(Kind)

    using QObject::QObject;

    Task<std::optional<QUrl>> chooseFile(OpenPanelRequest request, std::stop_token stop) override;

    Task<std::optional<QUrl>> chooseNewFile(SavePanelRequest request,
                                            std::stop_token stop) override;

    Task<std::optional<SavePanelChoice>> chooseNewFile(SavePanelRequest request,
                                                       SavePanelAccessory accessory,
                                                       std::stop_token stop) override;

    Task<std::optional<QUrl>> chooseFolder(FolderPanelRequest request,
                                           std::stop_token stop) override;

    bool isOpen() const { return m_open.has_value(); }
    Kind kind() const { return m_panel.kind; }
    const QString &title() const { return m_panel.title; }
    const QString &prompt() const { return m_panel.prompt; }
    const QStringList &nameFilters() const { return m_panel.nameFilters; }
    const QUrl &folder() const { return m_panel.folder; }
    const QUrl &proposedFile() const { return m_panel.proposedFile; }
    const QString &defaultSuffix() const { return m_panel.defaultSuffix; }
    const QString &accessoryLabel() const { return m_panel.accessory.label; }
    const QString &accessoryPlaceholder() const { return m_panel.accessory.placeholder; }
    const QString &accessoryToolTip() const { return m_panel.accessory.toolTip; }
    const QString &accessoryHint() const { return m_panel.accessory.hint; }
    QString proposedName() const { return m_panel.proposedFile.fileName(); }

    /// The file named `name` in `folder`, with the panel's extension.
    Q_INVOKABLE QUrl fileIn(const QUrl &folder, const QString &name) const;
    /// As the user's desktop writes it.
    Q_INVOKABLE QString pathOf(const QUrl &folder) const;
    /// A new file that exists already is asked about first.
    Q_INVOKABLE void accept(const QUrl &chosen);
    Q_INVOKABLE void reject();
    /// The user agrees to replace the file.
    Q_INVOKABLE void replace();
    /// The user would rather go back to the panel.
    Q_INVOKABLE void chooseAnother();

Q_SIGNALS:
    void isOpenChanged();
    /// What the next panel shows, always before it is to open.
    void panelChanged();
    void openRequested();
    void accessoryTextChanged();
    /// The view asks whether to replace the file, and answers with replace() or chooseAnother().
    void replacingAsked();
    /// Whoever asked no longer wants an answer.
    void withdrawn();

private:
    struct Panel
    {
        Kind kind;
        QString title;
        QString prompt;
        QStringList nameFilters{};
        QUrl folder{};
        QUrl proposedFile{};
        QString defaultSuffix{};
        SavePanelAccessory accessory{};
    };

    Task<std::optional<QUrl>> show(Panel panel, std::stop_token stop);
    void answer(const std::optional<QUrl> &file);

    Panel m_panel{};
    QString m_accessoryText;
    std::optional<OneShot<std::optional<QUrl>>> m_open;
    /// Of the last file that was written.
    QUrl m_newFileFolder;
};

} // namespace lumaro
