#pragma once

#include "tests/e2e/servers/NginxServer.h"

namespace lumaro {

/// A live HLS channel, made in real time: a moving test picture and a tone in segments of 1 s, of
/// which the newest six are listed and older ones deleted. Needs an application object.
class LiveFeed
{
public:
    /// The channel appears as /NAME/index.m3u8 on `server`, which must outlive it. The error is an
    /// English sentence.
    static std::expected<std::unique_ptr<LiveFeed>, QString> start(const NginxServer &server,
                                                                   const QString &name);
    ~LiveFeed();
    LiveFeed(const LiveFeed &) = delete;
    LiveFeed &operator=(const LiveFeed &) = delete;

    QUrl url() const;

    /// True as soon as the playlist lists enough to start playing and its first segment is served.
    bool waitUntilServing(std::chrono::milliseconds timeout) const;

    /// Halts the feed as a broken uplink does: the server goes on serving the last playlist.
    void stall();
    void resume();
    /// Ends the feed in an orderly way: the playlist gets its end mark.
    void finish();
    /// Ends the feed; playlist and segments are gone from the server.
    void remove();

private:
    LiveFeed(const NginxServer &server, const QString &name);

    const NginxServer &m_server;
    QString m_name;
    ChildProcess m_ffmpeg;
};

} // namespace lumaro
