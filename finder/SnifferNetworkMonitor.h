#pragma once

#include "finder/DetectedStream.h"
#include "finder/ResourceMessage.h"
#include "platform/WallClock.h"

#include <QList>
#include <QObject>

namespace lumaro {

/// The HLS playlists that a browser's pages have loaded, each once, the last seen first. Main
/// thread.
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

    /// Empties the list.
    void clear();

Q_SIGNALS:
    void streamsChanged();
    void isSniffingChanged();

private:
    qsizetype find(const QString &key, const std::optional<QString> &name) const;

    WallClock m_clock;
    QList<DetectedStream> m_streams;
    /// What tells the streams apart, in their order.
    QList<QString> m_keys;
    bool m_isSniffing = true;
};

} // namespace lumaro
