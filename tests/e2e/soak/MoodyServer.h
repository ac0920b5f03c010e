#pragma once

#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/soak/Dice.h"

namespace lumaro {

/// A server whose answers fail at random: errors, connections that break off or stall in the middle
/// of a body, slow and late ones, cut playlists, noise.
///
/// /index.m3u8   a finished stream, with its segments /segmentNNN.ts
/// /list.m3u     a list of channels, each of them /index.m3u8
/// /film.mp4     a film
/// /page.html    a page that plays the film and asks for the stream
class MoodyServer
{
public:
    /// Nothing, with a failed test, when that does not work.
    static std::unique_ptr<MoodyServer> start(const MediaFixtures &media);

    QUrl url(const QByteArray &target) const { return m_server->url(target); }
    /// From now on every path answers as it comes; what was stalled goes on.
    void changeMoods(Dice &dice);
    /// From now on all is well.
    void calmDown();
    int openConnections() const { return m_server->openConnections(); }

private:
    bool addStream(const QString &folder);
    void wake();

    std::unique_ptr<FaultServer> m_server;
    QMap<QByteArray, FaultResponse> m_good;
};

} // namespace lumaro
