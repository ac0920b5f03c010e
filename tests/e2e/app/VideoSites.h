#pragma once

#include "player/WebServices.h"
#include "tests/e2e/servers/NginxServer.h"

namespace lumaro {

/// A server that stands in for both video sites. Their pages play real media, 60 s and 10 s of a
/// moving test picture with a tone, and tell the server what they do.
///
/// YouTube's clips are clip1 and clip2, and refused and gone, which do not play; its playlist PL1
/// has clip2 and clip1. OK.ru's videos are all the same, and try to do what sites/ok.html says of
/// their names. The page late is, if asked for shortly before; elsewhere leads there; the page 404
/// is not there.
class VideoSites
{
public:
    /// Nothing, with a failed test, when there is no server.
    static std::unique_ptr<VideoSites> start();

    NginxServer &server() { return *m_server; }
    /// What the application must take for the sites.
    WebServices services() const;

    /// From now on, only what is asked for and told from now on counts.
    void forget() { m_forgotten = m_server->accessLog().size(); }
    /// What the server has been asked for, as in its access log.
    QStringList requests() const { return m_server->accessLog().sliced(m_forgotten); }
    /// A page has told this, such as "youtube/clip1/pause".
    bool wasTold(const QString &what) const;
    /// How often a page whose name begins so has told that it plays, which it does five times a
    /// second.
    qsizetype beats(const QString &site) const;
    /// Waits for the pages whose names begin so to end, which takes their processes a moment, and
    /// for another second.
    bool fallSilent(const QString &site) const;
    bool wasAsked(const QString &path) const;
    /// Takes YouTube's player away, or gives it back.
    bool setYouTubeReachable(bool reachable) const;

private:
    std::unique_ptr<NginxServer> m_server;
    qsizetype m_forgotten = 0;
};

} // namespace lumaro
