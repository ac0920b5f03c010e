#include "player/WebPlayback.h"

#include <QJSEngine>
#include <QTest>

#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

/// What pages answer: those that mean well, and the others.
class WebPlaybackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void believesWhatCanBe_data();
    void believesWhatCanBe();
    void dropsTheRest_data();
    void dropsTheRest();
    void readsTheFirstVideo_data();
    void readsTheFirstVideo();
    void explainsEveryError_data();
    void explainsEveryError();
};

void WebPlaybackTest::believesWhatCanBe_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::addColumn<WebPlayback>("playback");
    using Stage = WebPlayback::Stage;
    const auto at = [](double time, double duration) {
        return WebPlayback{
            .stage = Stage::Ready, .time = time, .duration = duration, .isPlaying = true};
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("playing") << QVariantList{2, 1.5, 60, 1, 0} << at(1.5, 60);
    QTest::newRow("large integers")
        << QVariantList{2, 90'000'000LL, 90'000'001LL, 1, 0} << at(90'000'000, 90'000'001);
    QTest::newRow("without an end") << QVariantList{2, 5.0, infinity, 1, 0} << at(5, 0);
    QTest::newRow("not numbers") << QVariantList{2, nan, nan, 1, nan} << at(0, 0);
    QTest::newRow("negative") << QVariantList{2, -5.0, -1, 1, 0} << at(0, 0);
    QTest::newRow("beyond all bounds") << QVariantList{2, 1e300, 1e10, 1, 1e300} << at(0, 0);
    for (const auto &[state, isPlaying] : {std::pair{3, true}, {0, false}, {2, false}, {5, false}})
        QTest::addRow("state %d", state)
            << QVariantList{2, 0, 0, state, 0}
            << WebPlayback{.stage = Stage::Ready, .isPlaying = isPlaying};
    for (const double state : {-1., 4., 0.5, 1e300, nan})
        QTest::addRow("state %g", state)
            << QVariantList{2, 0, 0, state, 0}
            << WebPlayback{.stage = Stage::Ready, .isPlaying = std::nullopt};
}

void WebPlaybackTest::believesWhatCanBe()
{
    QFETCH(const QVariantList, answer);
    QFETCH(const WebPlayback, playback);
    QVERIFY(readWebPlayback(answer) == playback);
}

void WebPlaybackTest::dropsTheRest_data()
{
    QTest::addColumn<QVariant>("answer");
    QTest::newRow("nothing") << QVariant();
    QTest::newRow("text") << QVariant(u"[2,0,0,1,0]"_s);
    QTest::newRow("object") << QVariant(QVariantMap{{u"0"_s, 2}});
    QTest::newRow("empty") << QVariant(QVariantList());
    QTest::newRow("short") << QVariant(QVariantList{2, 0, 0, 1});
    QTest::newRow("long") << QVariant(QVariantList{2, 0, 0, 1, 0, 0});
    QTest::newRow("text inside") << QVariant(QVariantList{2, u"1"_s, 0, 1, 0});
    QTest::newRow("yes inside") << QVariant(QVariantList{2, 0, 0, true, 0});
    QTest::newRow("list inside") << QVariant(QVariantList{2, QVariantList{1}, 0, 1, 0});
    QTest::newRow("nothing inside") << QVariant(QVariantList{2, 0, QVariant(), 1, 0});
    QTest::newRow("unknown stage") << QVariant(QVariantList{3, 0, 0, 1, 0});
    QTest::newRow("broken stage") << QVariant(QVariantList{1e300, 0, 0, 1, 0});
}

void WebPlaybackTest::dropsTheRest()
{
    QFETCH(const QVariant, answer);
    QVERIFY(!readWebPlayback(answer));
}

void WebPlaybackTest::readsTheFirstVideo_data()
{
    QTest::addColumn<QString>("video");
    QTest::addColumn<WebPlayback>("playback");
    using Stage = WebPlayback::Stage;
    QTest::newRow("none") << u"null"_s << WebPlayback{.stage = Stage::Preparing, .isPlaying = {}};
    QTest::newRow("playing")
        << u"{ currentTime: 2, duration: 60, paused: false, ended: false, error: null }"_s
        << WebPlayback{.stage = Stage::Ready, .time = 2, .duration = 60, .isPlaying = true};
    QTest::newRow("ended")
        << u"{ currentTime: 60, duration: 60, paused: false, ended: true, error: null }"_s
        << WebPlayback{.stage = Stage::Ready, .time = 60, .duration = 60, .isPlaying = false};
    QTest::newRow("live, paused")
        << u"{ currentTime: 9, duration: Infinity, paused: true, ended: false, error: null }"_s
        << WebPlayback{.stage = Stage::Ready, .time = 9, .isPlaying = false};
    QTest::newRow("broken")
        << u"{ currentTime: 0, duration: NaN, paused: true, ended: false, error: { code: 4 } }"_s
        << WebPlayback{.stage = Stage::Ready, .isPlaying = false, .error = 4};
}

void WebPlaybackTest::readsTheFirstVideo()
{
    QFETCH(const QString, video);
    QFETCH(const WebPlayback, playback);
    QJSEngine page;
    page.evaluate(u"document = { querySelector: s => s === 'video' ? "_s + video + u" : null }"_s);
    const QJSValue answer = page.evaluate(videoPlaybackScript());
    QVERIFY2(!answer.isError(), qPrintable(answer.toString()));
    QVERIFY(readWebPlayback(answer.toVariant()) == playback);
}

void WebPlaybackTest::explainsEveryError_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("part");
    QTest::newRow("bad identifier") << 2 << u"no video"_s;
    QTest::newRow("gone") << 100 << u"removed"_s;
    QTest::newRow("not for embedding") << 101 << u"owner"_s;
    QTest::newRow("not for embedding, again") << 150 << u"owner"_s;
    QTest::newRow("unknown") << 4711 << u"error 4711"_s;
}

void WebPlaybackTest::explainsEveryError()
{
    QFETCH(const int, error);
    QFETCH(const QString, part);
    QVERIFY2(youTubeErrorText(error).contains(part), qPrintable(youTubeErrorText(error)));
}

QTEST_GUILESS_MAIN(WebPlaybackTest)
#include "tst_webplayback.moc"
