#pragma once

#include "tests/e2e/app/AppWorld.h"
#include "tests/e2e/app/VideoSites.h"
#include "tests/e2e/soak/MoodyServer.h"
#include "tests/e2e/soak/SoakTally.h"

#include <chrono>

namespace lumaro {

/// The application and all that it can open.
class SoakWorld
{
public:
    /// Nothing, with a failed test, when the servers do not start.
    static std::unique_ptr<SoakWorld> start(unsigned seed);
    ~SoakWorld();
    SoakWorld(const SoakWorld &) = delete;
    SoakWorld &operator=(const SoakWorld &) = delete;

    Dice &dice() { return m_dice; }
    AppWorld &app() { return *m_app; }
    SnifferBrowserTabs &tabs() { return *m_app->finder().tabs(); }
    M3U8DownloadManager &downloads() { return *m_app->downloads().manager(); }
    MoodyServer &moody() { return *m_moody; }
    LiveFeed &feed() { return *m_feed; }
    const SoakTally &tally() const { return *m_tally; }

    /// Local files, good ones and others.
    const QStringList &files() const { return m_files; }
    /// Of media, good ones and others.
    const QStringList &addresses() const { return m_addresses; }
    /// Of HLS streams.
    const QList<QUrl> &streams() const { return m_streams; }
    const QStringList &lists() const { return m_lists; }
    const QList<QUrl> &pages() const { return m_pages; }

    /// What is wrong with the application now; empty for nothing.
    QString contradiction();
    /// Ends, closes and forgets whatever has been opened. Returns what would not end; empty when
    /// all has.
    QString closeEverything();

    /// Lets the event loop run, at most for as long as the slowest machine may take.
    template <typename Condition>
    bool settles(Condition condition)
    {
        return becomesTrue(condition);
    }

private:
    explicit SoakWorld(unsigned seed)
        : m_dice(seed)
    {
    }
    bool startServers();
    bool startSound();
    bool publish();

    Dice m_dice;
    QTemporaryDir m_home;
    ChildProcess m_pulse;
    std::unique_ptr<VideoSites> m_sites;
    std::unique_ptr<MoodyServer> m_moody;
    std::unique_ptr<LiveFeed> m_feed;
    QStringList m_files;
    QStringList m_addresses;
    QList<QUrl> m_streams;
    QStringList m_lists;
    QList<QUrl> m_pages;
    std::unique_ptr<AppWorld> m_app;
    std::unique_ptr<SoakTally> m_tally;
};

} // namespace lumaro
