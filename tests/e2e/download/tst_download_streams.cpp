#include "tests/e2e/download/DownloadWorld.h"
#include "tests/e2e/servers/LiveFeed.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/ValueOrFail.h"

#include <QFileInfo>
#include <QTest>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// The fixtures' streams: 20 s at 30 frames a second.
constexpr int streamFrames = 600;
constexpr double streamDuration = 20;

} // namespace

class DownloadStreamsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<DownloadWorld>(); }
    void cleanup() { m_world.reset(); }

    void savesAFinishedStream_data();
    void savesAFinishedStream();
    void savesSideBySide();
    void followsALiveStreamToItsEnd();

private:
    std::unique_ptr<LiveFeed> startFeed(const QString &name);
    bool isLiveWith(const QUrl &url, int segments) const;

    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<DownloadWorld> m_world;
};

void DownloadStreamsTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    const MediaFixtures fixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    for (const auto &[fixture, name] :
         {std::pair(Fixture::Hls, u"ts"_s), std::pair(Fixture::FragmentedHls, u"fmp4"_s)}) {
        const QString master = valueOrFail(fixtures.path(fixture));
        QVERIFY(m_nginx->publish(QFileInfo(master).absolutePath(), name));
    }
}

void DownloadStreamsTest::savesAFinishedStream_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("file");
    QTest::newRow("master") << u"/ts/master.m3u8"_s << u"Film.ts"_s;
    QTest::newRow("media playlist") << u"/ts/low/index.m3u8"_s << u"Film.ts"_s;
    QTest::newRow("fragmented MP4") << u"/fmp4/master.m3u8"_s << u"Film.mp4"_s;
    QTest::newRow("redirected segments") << u"/redirected.m3u8"_s << u"Film.ts"_s;
}

void DownloadStreamsTest::savesAFinishedStream()
{
    QFETCH(const QString, address);
    QFETCH(const QString, file);
    QByteArray redirected = "#EXTM3U\n";
    for (int i = 0; i < 10; ++i)
        redirected +=
            QByteArray("/redirect/302/ts/high/segment00%.ts\n").replace('%', QByteArray::number(i));
    QVERIFY(m_nginx->writeFile(u"redirected.m3u8"_s, redirected + "#EXT-X-ENDLIST\n"));

    const QString path = m_world->save(m_nginx->url(address), u"Film"_s);
    QCOMPARE(path, m_world->path(file));
    const Picture picture = pictureOf(path);
    QCOMPARE(picture.frames, streamFrames);
    QCOMPARE(picture.complaints, QByteArray());
    QVERIFY(qAbs(picture.duration - streamDuration) < 0.1);
    // The highest bandwidth was taken.
    const bool isLow = address.contains(u"low");
    const QByteArray size =
        outputOf(u"ffprobe"_s,
                 {u"-v"_s, u"error"_s, u"-select_streams"_s, u"v:0"_s, u"-show_entries"_s,
                  u"stream=width"_s, u"-of"_s, u"csv=p=0"_s, path});
    QVERIFY(size.startsWith(isLow ? "320" : "640"));
}

void DownloadStreamsTest::savesSideBySide()
{
    const QUrl high = m_nginx->url(u"/ts/high/index.m3u8"_s);
    const QUrl low = m_nginx->url(u"/ts/low/index.m3u8"_s);
    m_world->manager().start(high, u"Film"_s);
    const QString lowFile = m_world->save(low, u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(high), u"Saved"_s);
    const QString highFile = m_world->job(high).destination.toLocalFile();
    QVERIFY(highFile != lowFile);
    for (const QString &file : {highFile, lowFile})
        QCOMPARE(pictureOf(file).frames, streamFrames);
}

std::unique_ptr<LiveFeed> DownloadStreamsTest::startFeed(const QString &name)
{
    auto feed = valueOrFail(LiveFeed::start(*m_nginx, name));
    if (feed && !feed->waitUntilServing(30s))
        QTest::qFail("The feed does not start.", __FILE__, __LINE__);
    return feed;
}

bool DownloadStreamsTest::isLiveWith(const QUrl &url, int segments) const
{
    const QString message = m_world->job(url).message;
    return message.startsWith(u"Live · ") && message.section(u' ', 2, 2).toInt() >= segments;
}

void DownloadStreamsTest::followsALiveStreamToItsEnd()
{
    const auto feed = startFeed(u"ending"_s);
    m_world->manager().start(feed->url(), u"Live"_s);
    QTRY_VERIFY_WITH_TIMEOUT(isLiveWith(feed->url(), 4), 60'000);
    feed->finish();
    QCOMPARE(m_world->messageAtEnd(feed->url()), u"Saved"_s);
    const Picture picture = pictureOf(m_world->path(u"Live.ts"_s));
    QVERIFY(picture.frames >= 4 * 30);
    QCOMPARE(picture.complaints, QByteArray());
}

QTEST_GUILESS_MAIN(DownloadStreamsTest)
#include "tst_download_streams.moc"
