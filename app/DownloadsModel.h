#pragma once

#include "download/DownloadListModel.h"
#include "player/PlayerModel.h"

namespace lumaro {

/// What the main window decides about downloads: whether what plays can be saved, and what the
/// user is told. Main thread.
class DownloadsModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(lumaro::M3U8DownloadManager *manager READ manager CONSTANT)
    Q_PROPERTY(lumaro::DownloadListModel *list READ list CONSTANT)
    Q_PROPERTY(bool panelShown READ panelShown WRITE setPanelShown NOTIFY panelShownChanged)
    /// An HLS stream from the network plays, and it is not being saved yet.
    Q_PROPERTY(bool canDownloadStream READ canDownloadStream NOTIFY canDownloadStreamChanged)
    /// As the user's desktop writes it.
    Q_PROPERTY(QString saveFolderPath READ saveFolderPath NOTIFY saveFolderPathChanged)

public:
    /// Both outlive the model.
    DownloadsModel(M3U8DownloadManager &manager, PlayerModel &player, QObject *parent = nullptr);

    M3U8DownloadManager *manager() { return &m_manager; }
    DownloadListModel *list() { return &m_list; }
    bool panelShown() const { return m_panelShown; }
    void setPanelShown(bool shown);
    bool canDownloadStream() const { return m_canDownloadStream; }
    QString saveFolderPath() const;

    /// Saves the stream that plays, or says why not.
    Q_INVOKABLE void downloadStream();

Q_SIGNALS:
    void panelShownChanged();
    void canDownloadStreamChanged();
    void saveFolderPathChanged();

private:
    void update();
    void announceError();

    M3U8DownloadManager &m_manager;
    PlayerModel &m_player;
    DownloadListModel m_list;
    bool m_panelShown = false;
    bool m_canDownloadStream = false;
};

} // namespace lumaro
