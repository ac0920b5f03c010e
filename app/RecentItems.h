#pragma once

#include "platform/Async.h"
#include "platform/DefaultsValue.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <optional>
#include <stop_token>

namespace lumaro {

class MainWindowModel;
class MediaPlayer;
class PlayerModel;

/// A file or an address that the user has opened.
struct RecentItem
{
    QUrl url;
    /// The user's own name for it; may be empty.
    QString name;

    bool operator==(const RecentItem &) const = default;
};

/// What was opened lately and could be played, newest first, each address once. What is picked out
/// of a list of channels or links is not in it. Nobody but this program is told. Main thread.
class RecentItems : public QObject
{
    Q_OBJECT
    /// The file that should have been opened but is not there; empty for none.
    Q_PROPERTY(QString missingFile READ missingFile NOTIFY missingFileChanged)

public:
    static constexpr qsizetype maximum = 20;
    /// Longer addresses are not kept, in characters.
    static constexpr qsizetype maximumAddressLength = 16'384;

    struct Parts
    {
        PlayerModel &player;
        MediaPlayer &mediaPlayer;
        MainWindowModel &window;
        UserDefaults &defaults;
        Scheduler &scheduler;
    };

    /// The parts outlive it.
    explicit RecentItems(const Parts &parts, QObject *parent = nullptr);
    ~RecentItems() override;

    const QList<RecentItem> &items() const { return m_items; }
    /// What a menu calls `item`: files with their folder where two have the same name.
    QString title(const RecentItem &item) const;

    /// Opens it again; a file that is not there becomes missingFile. Nothing happens when something
    /// else was opened before the disk has answered.
    Task<> open(RecentItem item);
    void clear();

    QString missingFile() const;
    Q_INVOKABLE void removeMissing();
    Q_INVOKABLE void keepMissing();

Q_SIGNALS:
    void changed();
    void missingFileChanged();
    void cleared();

private:
    void opened(const RecentItem &item);
    void recordPlaying();
    void record(const RecentItem &item);
    void setMissing(const std::optional<RecentItem> &item);
    void store();

    Parts m_parts;
    DefaultsValue m_stored;
    QList<RecentItem> m_items;
    /// Opened, but nobody knows yet whether there is anything to play.
    std::optional<RecentItem> m_opening;
    std::optional<RecentItem> m_missing;
    std::stop_source m_lifetime;
};

} // namespace lumaro
