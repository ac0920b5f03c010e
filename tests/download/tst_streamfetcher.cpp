#include "download/StreamFetcher.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeScheduler.h"

#include <QTest>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl master(u"https://h/master.m3u8"_s);

template <typename T>
Task<> keep(Task<DownloadResult<T>> operation, std::optional<DownloadResult<T>> &result)
{
    result = co_await operation;
}

} // namespace

class StreamFetcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_http = std::make_unique<FakeHttpClient>();
        m_scheduler = std::make_unique<FakeScheduler>();
        m_fetcher = std::make_unique<StreamFetcher>(*m_http, *m_scheduler);
        m_stop = {};
        m_playlist.reset();
    }

    void asksLikeABrowser();
    void readsText_data();
    void readsText();
    void choosesTheVariant_data();
    void choosesTheVariant();
    void readsAMediaPlaylistItself();
    void passesFailuresOn_data();
    void passesFailuresOn();
    void stopsAtAnyStep_data();
    void stopsAtAnyStep();

private:
    void resolve()
    {
        keep(m_fetcher->resolveMediaPlaylist(master, m_stop.get_token()), m_playlist);
    }
    void respond(const QUrl &url, const QByteArray &body)
    {
        m_http->respond(url, 200, body);
        m_scheduler->runBackground();
    }

    std::unique_ptr<FakeHttpClient> m_http;
    std::unique_ptr<FakeScheduler> m_scheduler;
    std::unique_ptr<StreamFetcher> m_fetcher;
    std::stop_source m_stop;
    std::optional<DownloadResult<MediaPlaylist>> m_playlist;
};

void StreamFetcherTest::asksLikeABrowser()
{
    resolve();
    QCOMPARE(m_http->lastRequest().userAgent,
             "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/605.1.15 "
             "Safari/605.1.15");
    QCOMPARE(m_http->lastRequest().patience, 60s);
    QCOMPARE(m_http->lastRequest().maximumBodySize, 64 * 1024 * 1024);
}

void StreamFetcherTest::readsText_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("failure");
    const QString rejected = u"The stream server rejected the download request."_s;
    QTest::newRow("plain") << 200 << QByteArray("a") << QByteArray("a") << QString();
    QTest::newRow("last success") << 299 << QByteArray("a") << QByteArray("a") << QString();
    QTest::newRow("byte-order mark")
        << 200 << QByteArray("\xEF\xBB\xBF#EXTM3U") << QByteArray("#EXTM3U") << QString();
    QTest::newRow("Latin-1") << 200 << QByteArray("caf\xE9") << QByteArray()
                             << u"This URL is not a valid M3U8 playlist."_s;
    for (const int status : {199, 300, 304, 403, 404, 500})
        QTest::addRow("%d", status) << status << QByteArray("a") << QByteArray() << rejected;
}

void StreamFetcherTest::readsText()
{
    QFETCH(const int, status);
    QFETCH(const QByteArray, body);
    std::optional<DownloadResult<PlaylistText>> text;
    keep(m_fetcher->fetchText(master, {}), text);
    m_http->respond(master, status, body);
    QTEST(text->value_or(PlaylistText()).utf8, "text");
    QTEST(*text ? QString() : description(text->error()), "failure");
}

void StreamFetcherTest::choosesTheVariant_data()
{
    QTest::addColumn<QList<int>>("bandwidths");
    QTest::addColumn<int>("chosen");
    QTest::newRow("only one") << QList{0} << 0;
    QTest::newRow("first of the highest") << QList{800000, 2000000, 2000000} << 1;
    QTest::newRow("highest first") << QList{9, 8} << 0;
    QTest::newRow("none says") << QList{0, 0} << 0;
}

void StreamFetcherTest::choosesTheVariant()
{
    QFETCH(const QList<int>, bandwidths);
    QFETCH(const int, chosen);
    QByteArray text = "#EXTM3U\n";
    for (qsizetype i = 0; i < bandwidths.size(); ++i)
        text += "#EXT-X-STREAM-INF:BANDWIDTH=" + QByteArray::number(bandwidths.at(i)) + "\nv/"
            + QByteArray::number(i) + "\n";
    resolve();
    respond(master, text);
    const QUrl variant(u"https://h/v/%1"_s.arg(chosen));
    // What looks like a further master playlist is read as a media playlist.
    respond(variant, "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\ns.ts\n");
    QVERIFY(*m_playlist);
    QCOMPARE(m_playlist->value().url, variant);
    QCOMPARE(SegmentList::Reader(m_playlist->value().segments).next(), QUrl(u"https://h/v/s.ts"_s));
    QCOMPARE(m_http->requests(), (QList<QUrl>{master, variant}));
}

void StreamFetcherTest::readsAMediaPlaylistItself()
{
    resolve();
    respond(master, "#EXTM3U\ns.ts\n");
    QCOMPARE(m_playlist->value().url, master);
    QCOMPARE(m_http->requests().size(), 1);
}

void StreamFetcherTest::passesFailuresOn_data()
{
    QTest::addColumn<QByteArray>("first"); // empty: no connection
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("failure");
    const QByteArray one = "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nv\n";
    const QString lost = HttpError{HttpError::Kind::Broken}.description();
    const QString invalid = u"This URL is not a valid M3U8 playlist."_s;
    QTest::newRow("no connection") << QByteArray() << QByteArray() << lost;
    QTest::newRow("variants without addresses")
        << QByteArray("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\n#c\n") << QByteArray() << invalid;
    QTest::newRow("variant without a connection") << one << QByteArray() << lost;
    QTest::newRow("variant that is no playlist") << one << QByteArray("<html>") << invalid;
}

void StreamFetcherTest::passesFailuresOn()
{
    QFETCH(const QByteArray, first);
    QFETCH(const QByteArray, second);
    const QUrl variant(u"https://h/v"_s);
    resolve();
    if (first.isEmpty())
        m_http->fail(master, HttpError::Kind::Broken);
    else
        respond(master, first);
    if (!m_playlist && second.isEmpty())
        m_http->fail(variant, HttpError::Kind::Broken);
    else if (!m_playlist)
        respond(variant, second);
    QTEST(description(m_playlist->error()), "failure");
}

void StreamFetcherTest::stopsAtAnyStep_data()
{
    QTest::addColumn<int>("steps");
    QTest::newRow("while fetching") << 0;
    QTest::newRow("while reading") << 1;
    QTest::newRow("while fetching the variant") << 2;
    QTest::newRow("while reading the variant") << 3;
}

void StreamFetcherTest::stopsAtAnyStep()
{
    QFETCH(const int, steps);
    resolve();
    if (steps > 0)
        m_http->respond(master, 200, "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nv\n");
    if (steps > 1)
        m_scheduler->runBackground();
    if (steps > 2)
        m_http->respond(QUrl(u"https://h/v"_s), 200, "#EXTM3U\ns.ts\n");
    QVERIFY(!m_playlist);
    m_stop.request_stop();
    QVERIFY(m_playlist);
    QCOMPARE(m_playlist->error(), DownloadFailure(HttpError{HttpError::Kind::Cancelled}));
    m_fetcher.reset();
    m_scheduler->runBackground(); // what comes too late meets nobody
}

QTEST_GUILESS_MAIN(StreamFetcherTest)
#include "tst_streamfetcher.moc"
