#include "app/TransportModel.h"
#include "tests/app/ShellWorld.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

class TransportModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatsTimes_data();
    void formatsTimes();
    void describesTheItem_data();
    void describesTheItem();
    void describesAWebPlayer();
};

void TransportModelTest::formatsTimes_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0.0 << u"0:00"_s;
    QTest::newRow("fraction") << 59.999 << u"0:59"_s;
    QTest::newRow("hour") << 3600.0 << u"1:00:00"_s;
    QTest::newRow("day") << 90061.0 << u"25:01:01"_s;
    QTest::newRow("negative") << -75.0 << u"-1:15"_s;
    QTest::newRow("barely negative") << -0.4 << u"0:00"_s;
}

void TransportModelTest::formatsTimes()
{
    QFETCH(const double, seconds);
    QTEST(formatTime(seconds), "text");
}

void TransportModelTest::describesTheItem_data()
{
    QTest::addColumn<bool>("live");
    QTest::addColumn<double>("time");
    QTest::addColumn<double>("length"); // 0: unknown
    QTest::addColumn<double>("windowStart"); // equal to the end: none
    QTest::addColumn<double>("windowEnd");
    QTest::addColumn<bool>("canSeek");
    QTest::addColumn<QString>("texts"); // position, end, preview of 65 s
    QTest::newRow("film") << false << 61. << 3700. << 0. << 0. << true
                          << u"1:01 / 1:01:40 / 1:05"_s;
    QTest::newRow("unknown length")
        << false << 61. << 0. << 0. << 0. << false << u"1:01 /  / 1:05"_s;
    QTest::newRow("live without a window")
        << true << 61. << 0. << 0. << 0. << false << u"1:01 / LIVE / 1:05"_s;
    QTest::newRow("live behind the edge")
        << true << 61. << 0. << 40. << 80. << true << u"-0:19 / LIVE / -0:15"_s;
    QTest::newRow("finished stream")
        << true << 61. << 100. << 0. << 0. << true << u"1:01 / 1:40 / 1:05"_s;
}

void TransportModelTest::describesTheItem()
{
    QFETCH(const bool, live);
    QFETCH(const double, time);
    QFETCH(const double, length);
    QFETCH(const double, windowStart);
    QFETCH(const double, windowEnd);
    ShellWorld world;
    const TransportModel transport(world.player);
    world.player.play(QUrl(u"http://h/a"_s), u"x"_s, live);
    world.mediaPlayer.time = time;
    if (length > 0)
        world.mediaPlayer.length = length;
    if (windowEnd > windowStart)
        world.mediaPlayer.seekable = MediaPlayer::TimeRange{windowStart, windowEnd};
    world.mediaPlayer.tick();

    QTEST(transport.canSeek(), "canSeek");
    const QString texts = transport.positionText() + u" / "_s + transport.endText() + u" / "_s
        + transport.previewText(65);
    QTEST(texts, "texts");
}

void TransportModelTest::describesAWebPlayer()
{
    ShellWorld world;
    const TransportModel transport(world.player);
    QCOMPARE(transport.obstacle(), QString());
    world.player.openRemote(u"https://youtu.be/v"_s, {});
    QVERIFY(!transport.canSeek());
    QVERIFY(!transport.obstacle().isEmpty());
    world.player.observeWebPlayback(
        {.stage = WebPlayback::Stage::Ready, .time = 61, .duration = 3700, .isPlaying = true});
    QVERIFY(transport.canSeek());
    QCOMPARE(transport.obstacle(), QString());
    QCOMPARE(transport.positionText() + u" / "_s + transport.endText(), u"1:01 / 1:01:40"_s);
    // A file that does not tell its length is nothing new.
    world.player.play(QUrl(u"http://h/a"_s), u"x"_s, false);
    QCOMPARE(transport.obstacle(), QString());
}

QTEST_GUILESS_MAIN(TransportModelTest)
#include "tst_transportmodel.moc"
