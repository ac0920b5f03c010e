#pragma once

#include "playlist/LocalM3UEditor.h"
#include "playlist/LocalM3UHistory.h"
#include "playlist/LocalM3UListModel.h"

#include <QDate>
#include <QObject>

namespace lumaro {

class FilePanels;
class MainWindowModel;
class PlayerModel;

/// What the main window does with the Local M3U library: what is saved from the player, added,
/// edited and deleted, imported and exported, and what the user is asked first. Main thread.
class LocalM3UModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(lumaro::LocalM3UListModel *list READ list CONSTANT)
    Q_PROPERTY(lumaro::LocalM3UEditor *editor READ editor CONSTANT)
    Q_PROPERTY(lumaro::LocalM3UHistory *history READ history CONSTANT)
    /// Why the last import failed, or the library cannot be stored; empty for neither.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    /// The library as it is now is not stored; tryAgain() helps once the reason is gone.
    Q_PROPERTY(bool isNotStored READ isNotStored NOTIFY errorMessageChanged)
    /// What the user must agree to; nothing is asked while the text is empty.
    Q_PROPERTY(QString questionTitle READ questionTitle NOTIFY questionChanged)
    Q_PROPERTY(QString questionText READ questionText NOTIFY questionChanged)
    Q_PROPERTY(QString questionButton READ questionButton NOTIFY questionChanged)
    /// Why the last export failed; empty once that was read.
    Q_PROPERTY(QString exportError READ exportError NOTIFY exportErrorChanged)
    /// There is something in the player that can be saved.
    Q_PROPERTY(bool canSaveCurrent READ canSaveCurrent NOTIFY currentChanged)
    /// What is in the player is in the library.
    Q_PROPERTY(bool isCurrentSaved READ isCurrentSaved NOTIFY currentChanged)
    /// There are channels or links.
    Q_PROPERTY(bool canSearch READ canSearch NOTIFY canSearchChanged)

public:
    /// What a drop on the library does.
    enum DropAction { NothingDropped, ImportDropped, AddDropped, PlayDropped };
    Q_ENUM(DropAction)

    struct Parts
    {
        LocalM3UStore &store;
        PlayerModel &player;
        MainWindowModel &window;
        FilePanels &panels;
        Scheduler &scheduler;
        /// Its background work may wait for a file system.
        Scheduler &files;
    };

    /// All parts outlive the model.
    explicit LocalM3UModel(const Parts &parts, QObject *parent = nullptr);
    ~LocalM3UModel() override;

    LocalM3UListModel *list() { return &m_list; }
    LocalM3UEditor *editor() { return &m_editor; }
    LocalM3UHistory *history() { return &m_history; }
    QString errorMessage() const;
    bool isNotStored() const { return !m_store.errorMessage().isEmpty(); }
    QString questionTitle() const;
    QString questionText() const;
    QString questionButton() const;
    const QString &exportError() const { return m_exportError; }
    bool canSaveCurrent() const;
    bool isCurrentSaved() const;
    bool canSearch() const;

    /// Plays the link at `row`.
    Q_INVOKABLE void play(int row);
    /// Opens the form for a new link.
    Q_INVOKABLE void add();
    /// Opens the form for the link at `row`.
    Q_INVOKABLE void edit(int row);
    Q_INVOKABLE QString addressAt(int row) const;

    // In place of the history's own: they tell of what is not in sight.
    void undo();
    void redo();

    // Ask first. The question whether to delete all is withdrawn when the library changes.
    Q_INVOKABLE void remove(int row);
    Q_INVOKABLE void removeAll();
    Q_INVOKABLE void agree();
    Q_INVOKABLE void disagree();

    /// Saves the channel at `index` of the player's playlist.
    Q_INVOKABLE void saveToLocalM3U(int index);
    /// Saves what is in the player; shows it in the library if it is there already.
    Q_INVOKABLE void saveCurrent();

    /// Asks for an M3U file and makes its entries the library.
    Q_INVOKABLE void importLocalPlaylist();
    /// What was dropped on the library: an M3U file becomes the library, an address is offered for
    /// adding, anything else plays. False when there is nothing in it.
    Q_INVOKABLE bool drop(const QList<QUrl> &urls, const QString &text);
    /// What drop() would do.
    Q_INVOKABLE DropAction dropAction(const QList<QUrl> &urls, const QString &text) const;
    /// Asks for a file and writes the library to it as M3U.
    Q_INVOKABLE void exportLocalPlaylistAsM3U();
    Q_INVOKABLE void closeExportError();
    Q_INVOKABLE void tryAgain();

    /// Shows the library in the sidebar.
    Q_INVOKABLE void show();
    /// Puts the keyboard into the search over the library, if that is in sight, or else over the
    /// channels; over the one that there is.
    void search();

Q_SIGNALS:
    void errorMessageChanged();
    void questionChanged();
    void exportErrorChanged();
    void currentChanged();
    void canSearchChanged();
    /// The library's list should have the keyboard.
    void focusRequested();

private:
    enum class Question { None, DeleteOne, DeleteAll };

    PlaylistEntry entryWithId(const QUuid &id) const;
    void ask(Question question, const QUuid &id);
    bool isInSight() const;
    void tellUnseen(const QString &change);
    void storeEdited(const PlaylistEntry &entry);
    void saveChannel(PlaylistEntry entry);
    void notifySaved();
    Task<> chooseAndImport();
    /// `remark` is said at the end, with what has been imported.
    Task<> importFrom(QUrl file, QString remark = {});
    void replaceLibrary(const PlaylistEntries &entries, const QString &remark);
    Task<> exportTo(std::stop_token stop);
    void setImportError(const QString &message);
    void setExportError(const QString &message);

    LocalM3UStore &m_store;
    PlayerModel &m_player;
    MainWindowModel &m_window;
    FilePanels &m_panels;
    Scheduler &m_files;
    LocalM3UListModel m_list;
    LocalM3UEditor m_editor;
    LocalM3UHistory m_history;
    QString m_importError;
    std::stop_source m_import;
    Question m_question = Question::None;
    QUuid m_questionedId;
    QString m_exportError;
    std::stop_source m_lifetime;
};

/// The file name that an export on this day begins with.
QString exportFileName(QDate day);

} // namespace lumaro
