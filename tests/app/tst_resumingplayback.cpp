#include "app/ResumingPlayback.h"
#include "tests/app/ShellWorld.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

struct World : ShellWorld
{
    ResumePositions positions{defaults, scheduler};
    std::unique_ptr<ResumingPlayback> resuming =
        std::make_unique<ResumingPlayback>(player, mediaPlayer, positions, scheduler);
    QTemporaryDir folder;

    QUrl file(const QString &name, const QByteArray &content = "x")
    {
        QFile made(folder.filePath(name));
        return made.open(QIODevice::WriteOnly) && made.write(content) == content.size()
            ? QUrl::fromLocalFile(made.fileName())
            : QUrl();
    }
    void open(const QUrl &url)
    {
        mediaPlayer.log.clear();
        player.playFile(url);
        scheduler.runBackground();
        playing(0, std::nullopt);
        Q_EMIT mediaPlayer.itemStarted();
    }
    std::optional<double> left(const QUrl &url) const
    {
        return positions.position(*FileIdentity::of(url));
    }
    QStringList seeks() const { return mediaPlayer.log.filter(u"seek"_s); }
};

} // namespace

class ResumingPlaybackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }
    void cleanup() { m_world.reset(); }

    void remembersLongFilesUnderWay_data();
    void remembersLongFilesUnderWay();
    void goesOnWhereItWasLeft();
    void everyWayOfLeavingCounts_data();
    void everyWayOfLeavingCounts();
    void changedFilesBeginAnew();
    void streamsBeginAnew();
    void filesThatNeverBeganKeepTheirPlace();
    void storesOnTheWay();
    void slowFoldersHoldNothingUp_data();
    void slowFoldersHoldNothingUp();
    void answersOfWhatIsGoneDoNotMatter();
    void forgetsWhatPlays();

private:
    std::unique_ptr<World> m_world;
};

void ResumingPlaybackTest::remembersLongFilesUnderWay_data()
{
    QTest::addColumn<double>("position");
    QTest::addColumn<double>("length");
    QTest::addColumn<bool>("isRemembered");
    QTest::newRow("in the middle") << 754.0 << 3600.0 << true;
    QTest::newRow("short") << 300.0 << 600.0 << false;
    QTest::newRow("just long enough") << 300.0 << 600.5 << true;
    QTest::newRow("hardly begun") << 29.9 << 3600.0 << false;
    QTest::newRow("begun") << 30.0 << 3600.0 << true;
    QTest::newRow("nearly over") << 3420.0 << 3600.0 << true;
    QTest::newRow("over") << 3420.1 << 3600.0 << false;
    QTest::newRow("at the end") << 3600.0 << 3600.0 << false;
}

void ResumingPlaybackTest::remembersLongFilesUnderWay()
{
    QFETCH(const double, position);
    QFETCH(const double, length);
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->open(film);
    m_world->playing(position, length);
    m_world->player.stop();
    QTEST(m_world->left(film).has_value(), "isRemembered");
    if (m_world->left(film))
        QCOMPARE(*m_world->left(film), position);

    // Where it was not remembered, what was remembered before is gone too.
    m_world->positions.remember(*FileIdentity::of(film), 99);
    m_world->open(film);
    m_world->playing(position, length);
    m_world->player.stop();
    QTEST(m_world->left(film).has_value(), "isRemembered");
}

void ResumingPlaybackTest::goesOnWhereItWasLeft()
{
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->open(film);
    QCOMPARE(m_world->seeks(), QStringList());
    QCOMPARE(m_world->player.toastMessage(), QString());
    m_world->playing(754, 3600);
    m_world->player.stop();

    m_world->open(film);
    QCOMPARE(m_world->seeks(), QStringList{u"seek 754"_s});
    QCOMPARE(m_world->player.toastMessage(), u"Resumed at 12:34 · Home plays from the beginning"_s);
    m_world->playing(760, 3600);
    // Who goes back to the beginning and leaves, begins there.
    m_world->player.seek(0);
    m_world->playing(1, 3600);
    m_world->player.stop();
    m_world->open(film);
    QCOMPARE(m_world->seeks(), QStringList());
}

void ResumingPlaybackTest::everyWayOfLeavingCounts_data()
{
    QTest::addColumn<std::function<void(World &)>>("leave");
    using Leave = std::function<void(World &)>;
    QTest::newRow("stop") << Leave([](World &w) { w.player.stop(); });
    QTest::newRow("another file") << Leave([](World &w) { w.open(w.file(u"other.mp4"_s)); });
    QTest::newRow("the same again")
        << Leave([](World &w) { w.player.playFile(w.player.currentURL()); });
    QTest::newRow("a stream") << Leave([](World &w) {
        w.player.openRemote(u"http://h/live.m3u8"_s, {});
        w.playing(5, std::nullopt);
    });
    QTest::newRow("a site's player")
        << Leave([](World &w) { w.player.openRemote(u"https://youtu.be/v"_s, {}); });
    QTest::newRow("quitting") << Leave([](World &w) { w.resuming.reset(); });
}

void ResumingPlaybackTest::everyWayOfLeavingCounts()
{
    QFETCH(const std::function<void(World &)>, leave);
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->open(film);
    m_world->playing(754, 3600);
    leave(*m_world);
    QCOMPARE(m_world->left(film), std::optional(754.0));
}

void ResumingPlaybackTest::changedFilesBeginAnew()
{
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->open(film);
    m_world->playing(754, 3600);
    m_world->player.stop();
    m_world->file(u"film.mp4"_s, "another film");
    m_world->open(film);
    QCOMPARE(m_world->seeks(), QStringList());
}

void ResumingPlaybackTest::streamsBeginAnew()
{
    const QString address = u"http://h/film.mp4"_s;
    for (int i = 0; i < 2; ++i) {
        m_world->player.openRemote(address, {});
        Q_EMIT m_world->mediaPlayer.itemStarted();
        m_world->playing(754, 3600);
        m_world->player.stop();
    }
    QCOMPARE(m_world->seeks(), QStringList());
}

void ResumingPlaybackTest::filesThatNeverBeganKeepTheirPlace()
{
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->positions.remember(*FileIdentity::of(film), 754);
    m_world->player.playFile(film);
    m_world->scheduler.runBackground();
    m_world->playing(0, std::nullopt);
    m_world->player.stop();
    QCOMPARE(m_world->left(film), std::optional(754.0));
}

void ResumingPlaybackTest::storesOnTheWay()
{
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->open(film);
    for (int second = 0; second <= 600; ++second)
        m_world->playing(second, 3600);
    m_world->scheduler.runBackground();
    QVERIFY(m_world->left(film).value_or(0) >= 600 - ResumingPlayback::storeInterval);
    QVERIFY2(m_world->defaults.writes <= 12, "wrote too often");
}

void ResumingPlaybackTest::slowFoldersHoldNothingUp_data()
{
    QTest::addColumn<double>("position");
    QTest::addColumn<QStringList>("seeks");
    QTest::newRow("before the first picture") << -1.0 << QStringList{u"seek 754"_s};
    QTest::newRow("just begun") << 2.0 << QStringList{u"seek 754"_s};
    QTest::newRow("seen for a while") << 31.0 << QStringList();
}

void ResumingPlaybackTest::slowFoldersHoldNothingUp()
{
    QFETCH(const double, position);
    QFETCH(const QStringList, seeks);
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->positions.remember(*FileIdentity::of(film), 754);
    m_world->scheduler.runBackground();
    m_world->player.playFile(film);
    QCOMPARE(m_world->mediaPlayer.log.filter(u"load"_s).size(), 1);
    if (position >= 0) {
        Q_EMIT m_world->mediaPlayer.itemStarted();
        m_world->playing(position, 3600);
    }
    QCOMPARE(m_world->seeks(), QStringList());
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->seeks(), seeks);
    if (position < 0)
        Q_EMIT m_world->mediaPlayer.itemStarted();
    QCOMPARE(m_world->player.toastMessage().startsWith(u"Resumed"_s), !seeks.isEmpty());
}

void ResumingPlaybackTest::answersOfWhatIsGoneDoNotMatter()
{
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->positions.remember(*FileIdentity::of(film), 754);
    m_world->player.playFile(film);
    m_world->player.openRemote(u"http://h/live.m3u8"_s, {});
    Q_EMIT m_world->mediaPlayer.itemStarted();
    m_world->scheduler.runBackground();
    m_world->playing(40, 3600);
    m_world->player.stop();
    QCOMPARE(m_world->seeks(), QStringList());
    QCOMPARE(m_world->left(film), std::optional(754.0));
    m_world->player.playFile(film);
    m_world->resuming.reset();
}

void ResumingPlaybackTest::forgetsWhatPlays()
{
    const QUrl film = m_world->file(u"film.mp4"_s);
    m_world->open(film);
    m_world->playing(754, 3600);
    m_world->resuming->forget();
    m_world->positions.clear();
    m_world->playing(900, 3600);
    m_world->player.stop();
    QCOMPARE(m_world->left(film), std::nullopt);
    // It is about this once only.
    m_world->open(film);
    m_world->playing(900, 3600);
    m_world->player.stop();
    QCOMPARE(m_world->left(film), std::optional(900.0));
}

QTEST_GUILESS_MAIN(ResumingPlaybackTest)
#include "tst_resumingplayback.moc"
