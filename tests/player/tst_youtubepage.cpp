#include "player/WebPlayback.h"
#include "player/WebPlayerRegistry.h"
#include "player/YouTubePage.h"
#include "tests/fakes/FakeScriptRunner.h"

#include <QFile>
#include <QJSEngine>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// The page's own script, as the HTML parser would find it.
QString scriptOf(const QString &page)
{
    static const QRegularExpression script(u"<script>(.*?)</script"_s,
                                           QRegularExpression::DotMatchesEverythingOption
                                               | QRegularExpression::CaseInsensitiveOption);
    return script.match(page).captured(1);
}

/// Runs page scripts in a real JavaScript engine, where YT.Player writes a log.
class Page
{
public:
    explicit Page(const QString &html = {})
    {
        QFile api(QFINDTESTDATA("youtube-api.js"));
        QVERIFY(api.open(QIODevice::ReadOnly));
        run(QString::fromUtf8(api.readAll()));
        run(scriptOf(html));
    }

    QVariant run(const QString &script)
    {
        const QJSValue value = m_engine.evaluate(script);
        if (value.isError())
            QTest::qFail(qPrintable(value.toString()), __FILE__, __LINE__);
        return value.toVariant();
    }
    QString json(const QString &expression)
    {
        return run(u"JSON.stringify("_s + expression + u')').toString();
    }
    QStringList takeLog() { return run(u"log.splice(0)"_s).toStringList(); }

private:
    QJSEngine m_engine;
};

QString pageFor(const char *video, const char *playlist)
{
    const auto id = [](const char *text) {
        return text ? std::optional(QString::fromUtf8(text)) : std::nullopt;
    };
    return youTubePage({id(video), id(playlist)}, {});
}

} // namespace

class YouTubePageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesAnyID_data();
    void survivesAnyID();
    void makesThePlayer_data();
    void makesThePlayer();
    void comesFromTheConfiguredPlaces();
    void obeysCommands_data();
    void obeysCommands();
    void ignoresCommandsWithoutAPlayer();
    void tellsItsPlayback_data();
    void tellsItsPlayback();
    void tellsErrorsUntilItPlays();
};

void YouTubePageTest::survivesAnyID_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::newRow("quotes") << QByteArray("a\"'`b");
    QTest::newRow("backslash at the end") << QByteArray("a\\");
    QTest::newRow("new line") << QByteArray("a\nb\r");
    QTest::newRow("end of script") << QByteArray("</script><script>log.push('no')</script>");
    QTest::newRow("end of script in capitals") << QByteArray("</SCRIPT >");
    QTest::newRow("comment") << QByteArray("<!--<script>");
    QTest::newRow("line separator") << QByteArray("a\u2028b");
    QTest::newRow("other scripts") << QByteArray("видео🎬");
}

void YouTubePageTest::survivesAnyID()
{
    QFETCH(const QByteArray, id);
    Page page(pageFor(id, id));
    page.run(u"onYouTubeIframeAPIReady()"_s);
    QCOMPARE(page.run(u"made.options.videoId"_s).toString().toUtf8(), id);
    QCOMPARE(page.run(u"made.options.playerVars.list"_s).toString().toUtf8(), id);
}

void YouTubePageTest::makesThePlayer_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("rest");
    const QString size = uR"("width":"100%","height":"100%")"_s;
    QTest::newRow("video") << pageFor("abc", nullptr) << QString()
                           << QString(size + uR"(,"videoId":"abc")"_s);
    QTest::newRow("playlist") << pageFor(nullptr, "PL1")
                              << uR"(,"listType":"playlist","list":"PL1")"_s << size;
    QTest::newRow("both") << pageFor("abc", "PL1") << uR"(,"listType":"playlist","list":"PL1")"_s
                          << QString(size + uR"(,"videoId":"abc")"_s);
}

void YouTubePageTest::makesThePlayer()
{
    QFETCH(const QString, html);
    QFETCH(const QString, list);
    QFETCH(const QString, rest);
    Page page(html);
    page.run(u"onYouTubeIframeAPIReady()"_s);
    QCOMPARE(page.run(u"made.element"_s), u"player"_s);
    const QString origin = WebServices().product.toString();
    QCOMPARE(page.json(u"made.options.playerVars"_s),
             uR"({"autoplay":1,"controls":1,"playsinline":1,"rel":0,"enablejsapi":1,"origin":")"_s
                 + origin + u'"' + list + u'}');
    page.run(u"made.options.events.onReady({ target: made })"_s);
    QCOMPARE(page.takeLog(), QStringList{u"playVideo"_s});
    QCOMPARE(
        page.json(u"(delete made.options.playerVars, delete made.options.events, made.options)"_s),
        QString(u'{' + rest + u'}'));
}

void YouTubePageTest::comesFromTheConfiguredPlaces()
{
    const WebServices services{.youTube = QUrl(u"http://127.0.0.1:8080"_s),
                               .okVideo = {},
                               .product = QUrl(u"https://player.example/"_s)};
    const QString page = youTubePage({u"abc"_s, {}}, services);
    QVERIFY(page.contains(u"<script src=\"http://127.0.0.1:8080/iframe_api\"></script>"_s));
    QVERIFY(page.contains(u"\"https://player.example\""_s));
    QVERIFY(pageFor("abc", nullptr).contains(u"\"https://www.youtube.com/iframe_api\""_s));
    QVERIFY(page.contains(u"name=\"referrer\" content=\"strict-origin-when-cross-origin\""_s));
}

void YouTubePageTest::obeysCommands_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<std::function<void(const WebPlayerRegistry &)>>("command");
    QTest::addColumn<QStringList>("calls");
    using Command = std::function<void(const WebPlayerRegistry &)>;
    const auto toggle = Command([](const auto &page) { page.togglePlayback(); });
    const auto row = [](const char *name, const QString &before, const Command &command,
                        const QStringList &calls) {
        QTest::newRow(name) << before << command << calls;
    };
    row("toggle while playing", u"state = 1"_s, toggle, {u"pauseVideo"_s});
    row("toggle while paused", u"state = 2"_s, toggle, {u"playVideo"_s});
    row("toggle while buffering", u"state = 3"_s, toggle, {u"playVideo"_s});
    row("skip", u"time = 60"_s, [](const auto &page) { page.skip(5); }, {u"seekTo 65 true"_s});
    row("skip before the beginning", u"time = 3"_s, [](const auto &page) { page.skip(-5); },
        {u"seekTo 0 true"_s});
    row("seek", u"time = 3"_s, [](const auto &page) { page.seek(31.5); }, {u"seekTo 31.5 true"_s});
    row("volume", {}, [](const auto &page) { page.setVolume(0.5); },
        {u"unMute"_s, u"setVolume 50"_s});
    row("volume between two", {}, [](const auto &page) { page.setVolume(0.125); },
        {u"unMute"_s, u"setVolume 13"_s});
    row("mute", {}, [](const auto &page) { page.setMuted(true); }, {u"mute"_s});
    row("unmute", {}, [](const auto &page) { page.setMuted(false); }, {u"unMute"_s});
}

void YouTubePageTest::obeysCommands()
{
    QFETCH(const QString, before);
    QFETCH(const std::function<void(const WebPlayerRegistry &)>, command);
    Page page(pageFor("abc", nullptr));
    page.run(u"onYouTubeIframeAPIReady(); made.becomeReady();"_s + before);
    FakeScriptRunner runner;
    YouTubePlayerRegistry registry;
    registry.setCurrentView(&runner);
    command(registry);
    QCOMPARE(runner.scripts.size(), 1);
    page.run(runner.scripts.first());
    QTEST(page.takeLog(), "calls");
}

void YouTubePageTest::ignoresCommandsWithoutAPlayer()
{
    FakeScriptRunner runner;
    YouTubePlayerRegistry registry;
    registry.setCurrentView(&runner);
    registry.togglePlayback();
    registry.skip(5);
    registry.seek(5);
    registry.setVolume(0.5);
    registry.setMuted(true);
    registry.setMuted(false);
    // Before there is a player, and before the player can be told anything.
    for (const QString &state : {QString(), u"onYouTubeIframeAPIReady()"_s}) {
        Page page(pageFor("abc", nullptr));
        page.run(state);
        for (const QString &script : std::as_const(runner.scripts))
            page.run(script);
        QCOMPARE(page.takeLog(), QStringList());
    }
}

void YouTubePageTest::tellsItsPlayback_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<WebPlayback>("playback");
    using Stage = WebPlayback::Stage;
    QTest::newRow("no API") << u"YT = undefined"_s << WebPlayback{.isPlaying = {}};
    QTest::newRow("no player yet")
        << QString() << WebPlayback{.stage = Stage::Preparing, .isPlaying = {}};
    QTest::newRow("player not ready") << u"onYouTubeIframeAPIReady()"_s
                                      << WebPlayback{.stage = Stage::Preparing, .isPlaying = {}};
    const QString ready = u"onYouTubeIframeAPIReady(); made.becomeReady();"_s;
    QTest::newRow("unstarted") << QString(ready + u"state = -1"_s)
                               << WebPlayback{.stage = Stage::Ready, .isPlaying = {}};
    QTest::newRow("playing") << QString(ready + u"state = 1; time = 2.5; duration = 60"_s)
                             << WebPlayback{.stage = Stage::Ready,
                                            .time = 2.5,
                                            .duration = 60,
                                            .isPlaying = true};
    QTest::newRow("nonsense") << QString(ready + u"state = 'x'; time = {}; duration = undefined"_s)
                              << WebPlayback{.stage = Stage::Ready, .isPlaying = {}};
}

void YouTubePageTest::tellsItsPlayback()
{
    QFETCH(const QString, state);
    QFETCH(const WebPlayback, playback);
    Page page(pageFor("abc", nullptr));
    page.run(state);
    QVERIFY(readWebPlayback(page.run(youTubePlaybackScript())) == playback);
}

void YouTubePageTest::tellsErrorsUntilItPlays()
{
    Page page(pageFor("abc", nullptr));
    const auto error = [&page] {
        return readWebPlayback(page.run(youTubePlaybackScript())).value_or(WebPlayback()).error;
    };
    page.run(u"onYouTubeIframeAPIReady()"_s);
    QCOMPARE(error(), 0);
    page.run(u"made.fail(150)"_s);
    QCOMPARE(error(), 150);
    page.run(u"made.becomeReady(); state = -1"_s);
    QCOMPARE(error(), 150);
    page.run(u"state = 1"_s);
    QCOMPARE(error(), 0);
    page.run(u"state = -1; made.fail({})"_s);
    QCOMPARE(error(), -1);
}

QTEST_GUILESS_MAIN(YouTubePageTest)
#include "tst_youtubepage.moc"
