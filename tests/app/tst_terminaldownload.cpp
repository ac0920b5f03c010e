#include "app/TerminalDownload.h"
#include "tests/download/DownloadWorld.h"
#include "tests/fakes/FakeTerminal.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl list = DownloadWorld::url(u"list.m3u8"_s);
const QUrl a = DownloadWorld::url(u"a"_s);
const QUrl b = DownloadWorld::url(u"b"_s);

struct World : DownloadWorld
{
    FakeTerminal terminal;
    TerminalDownload download{*manager, scheduler, terminal};
    QSignalSpy finished{&download, &TerminalDownload::finished};
};

} // namespace

class TerminalDownloadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }

    void showsALineThatChanges();
    void writesALogWhereNobodyWatches();
    void saysWhyItFailed();
    void endsAsTheUserWishes_data();
    void endsAsTheUserWishes();

private:
    void begin(const QByteArray &playlist)
    {
        m_world->download.start(list, u"News"_s);
        m_world->respond(list, playlist);
    }
    QString path() const { return m_world->folder.filePath(u"News.ts"_s); }

    std::unique_ptr<World> m_world;
};

void TerminalDownloadTest::showsALineThatChanges()
{
    m_world->terminal.interactive = true;
    begin("#EXTM3U\na\nb\n#EXT-X-ENDLIST");
    QCOMPARE(m_world->terminal.progress, u"Preparing… · 0:00"_s);
    m_world->scheduler.advance(1s);
    QCOMPARE(m_world->terminal.progress, u"Starting… · 0:01"_s);
    m_world->respond(a, QByteArray(6'000'000, 'x'));
    m_world->scheduler.advance(1s);
    QCOMPARE(m_world->terminal.progress, u"50% · 6.0 MB · 3.0 MB/s · 0:02"_s);
    // The rate is that of the last seconds.
    m_world->scheduler.advance(59s);
    QCOMPARE(m_world->terminal.progress, u"50% · 6.0 MB · 0 bytes/s · 1:01"_s);
    m_world->respond(b, "x");
    QCOMPARE(m_world->terminal.progress, QString());
    QCOMPARE(m_world->terminal.said,
             (QStringList{u"Saving to "_s + path(), u"Saved · 6.0 MB · 1:01"_s}));
    QCOMPARE(m_world->terminal.printed, QStringList{path()});
    QCOMPARE(m_world->finished.value(0).value(0), 0);
    m_world->scheduler.advance(1min);
    QCOMPARE(m_world->terminal.progress, QString());
}

void TerminalDownloadTest::writesALogWhereNobodyWatches()
{
    begin("#EXTM3U\na\n");
    m_world->respond(a, QByteArray(2'000'000, 'x'));
    m_world->scheduler.advance(10s);
    QCOMPARE(m_world->terminal.said,
             (QStringList{u"Preparing… · 0:00"_s, u"Saving to "_s + path(),
                          u"Live · 1 segments · 2.0 MB · 200.0 kB/s · 0:10"_s}));
    QCOMPARE(m_world->terminal.progress, QString());
}

void TerminalDownloadTest::saysWhyItFailed()
{
    begin("#EXTM3U\na\nb\n");
    m_world->respond(a, "x");
    m_world->http.respond(b, 403, {});
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->terminal.said.sliced(2),
             (QStringList{u"The stream server rejected the download request."_s,
                          u"What had arrived is kept: "_s + path()}));
    QVERIFY(m_world->terminal.printed.isEmpty());
    QCOMPARE(m_world->finished.value(0).value(0), 1);
}

void TerminalDownloadTest::endsAsTheUserWishes_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::addColumn<bool>("hasSegment");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("sentence");
    const QByteArray live = "#EXTM3U\na\nb\n";
    const QByteArray film = live + "#EXT-X-ENDLIST";
    const QString nothing = u"Stopped · file saved · 0 bytes · 0:00"_s;
    const QString something = u"Stopped · file saved · 1 bytes · 0:00"_s;
    QTest::newRow("live") << live << true << 0 << something;
    QTest::newRow("live, nothing yet") << live << false << 130 << nothing;
    QTest::newRow("film") << film << true << 130 << something;
    QTest::newRow("film, nothing yet") << film << false << 130 << nothing;
}

void TerminalDownloadTest::endsAsTheUserWishes()
{
    QFETCH(const QByteArray, playlist);
    QFETCH(const bool, hasSegment);
    begin(playlist);
    if (hasSegment)
        m_world->respond(a, "x");
    Q_EMIT m_world->terminal.interrupted(SIGINT);
    m_world->scheduler.runBackground();
    QTEST(m_world->finished.value(0).value(0).toInt(), "status");
    QTEST(m_world->terminal.said.last(), "sentence");
    QCOMPARE(m_world->terminal.printed, QStringList{path()});
}

QTEST_GUILESS_MAIN(TerminalDownloadTest)
#include "tst_terminaldownload.moc"
