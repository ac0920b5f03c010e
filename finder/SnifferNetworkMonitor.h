#pragma once

#include "finder/DetectedStream.h"
#include "finder/ResourceMessage.h"
#include "platform/WallClock.h"

#include <QHash>
#include <QList>
#include <QObject>

#include <set>
#include <utility>

namespace lumaro {

/// The HLS playlists that a browser's pages have loaded, each once, the last seen first. There may
/// be many thousands: some players put what they want next into the address. Main thread.
class SnifferNetworkMonitor : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<lumaro::DetectedStream> streams READ streams NOTIFY streamsChanged)
    /// While false, nothing is noted.
    Q_PROPERTY(bool isSniffing READ isSniffing WRITE setSniffing NOTIFY isSniffingChanged)

public:
    explicit SnifferNetworkMonitor(WallClock clock = systemClock(), QObject *parent = nullptr);

    const QList<DetectedStream> &streams() const { return m_streams; }
    bool isSniffing() const { return m_isSniffing; }
    void setSniffing(bool sniffing);

    /// Notes one sighting, if it is one of an HLS playlist. The same playlist, whatever its
    /// fragment, is noted again rather than listed twice; with `consolidateByName` also another
    /// one of the same name.
    void observe(const QUrl &url, const std::optional<QString> &contentType,
                 const std::optional<QString> &playlistText,
                 const std::optional<QString> &displayName, bool consolidateByName);
    /// Notes what a page's script reports; `pageTitle` stands in for a missing title.
    void observe(const ResourceMessage &message, const QString &pageTitle);

    /// Where the stream with that address, whatever its fragment, is in the list; -1 for nowhere.
    qsizetype indexOf(const QUrl &url) const;

    /// Empties the list.
    void clear();

Q_SIGNALS:
    void streamsChanged();
    /// The stream that was at `from` has been seen again and is the first now; one that was not
    /// listed is when that is negative.
    void streamSeen(qsizetype from);
    void cleared();
    void isSniffingChanged();

private:
    /// The last sighting of a stream. Later ones have greater numbers.
    struct Sighting
    {
        qint64 number = -1;
        /// What tells the streams apart.
        QString key;
    };
    qsizetype placeOf(qint64 number) const;
    qsizetype find(const QString &key, const std::optional<QString> &name) const;

    WallClock m_clock;
    QList<DetectedStream> m_streams;
    /// Of each stream, in their order.
    QList<Sighting> m_sightings;
    QHash<QString, qint64> m_numbersByKey;
    /// Of the streams that have names, with those.
    std::set<std::pair<QString, qint64>> m_numbersByName;
    qint64 m_lastNumber = 0;
    bool m_isSniffing = true;
};

} // namespace lumaro
