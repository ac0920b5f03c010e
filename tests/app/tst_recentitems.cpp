#include "app/MenuCommands.h"
#include "app/RecentItems.h"
#include "app/RecentMenu.h"
#include "tests/app/ShellWorld.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString key = u"Lumaro.RecentItems"_s;

QUrl address(int number)
{
    return QUrl(u"http://h/%1.mp4"_s.arg(number));
}

} // namespace

class RecentItemsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<ShellWorld>(); }
    void cleanup() { m_world.reset(); }

    void remembersWhatPlays();
    void forgetsWhatNeverPlayed();
    void remembersPlaylists();
    void leavesOutWhatIsPickedFromAList();
    void keepsTheNewest();
    void comesBackAtTheNextStart();
    void readsWhateverIsStored_data();
    void readsWhateverIsStored();
    void tellsNamesakesApart();
    void showsNoPasswords_data();
    void showsNoPasswords();
    void opensAgain();
    void lateAnswersChangeNothing_data();
    void lateAnswersChangeNothing();
    void asksAboutMissingFiles();
    void clears();
    void menuFollows();

private:
    RecentItems &recent() { return m_world->recent; }
    QList<QUrl> urls()
    {
        QList<QUrl> all;
        for (const RecentItem &item : recent().items())
            all.append(item.url);
        return all;
    }
    void play(const QUrl &url, const QString &name = {})
    {
        m_world->player.openRemote(url.toString(), name);
        Q_EMIT m_world->mediaPlayer.itemStarted();
    }
    QString file(const QString &name)
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile made(path);
        return made.open(QIODevice::WriteOnly) ? path : QString();
    }

    QTemporaryDir m_folder;
    std::unique_ptr<ShellWorld> m_world;
};

void RecentItemsTest::remembersWhatPlays()
{
    play(address(1), u" One "_s);
    m_world->player.playFile(QUrl::fromLocalFile(u"/films/a.mp4"_s));
    QCOMPARE(urls(), QList{address(1)});
    Q_EMIT m_world->mediaPlayer.itemStarted();
    QCOMPARE(
        recent().items(),
        (QList<RecentItem>{{QUrl::fromLocalFile(u"/films/a.mp4"_s), {}}, {address(1), u"One"_s}}));
    // The service's own player needs no media player.
    m_world->player.openRemote(u"https://youtu.be/v"_s, {});
    QCOMPARE(urls().first(), QUrl(u"https://youtu.be/v"_s));
}

void RecentItemsTest::forgetsWhatNeverPlayed()
{
    // An address opens while it is still being typed.
    m_world->player.openRemote(u"http://h/fil"_s, {});
    m_world->player.openRemote(u"http://h/film.mp4"_s, {});
    Q_EMIT m_world->mediaPlayer.itemStarted();
    QCOMPARE(urls(), QList{QUrl(u"http://h/film.mp4"_s)});
    m_world->player.openRemote(u"nonsense"_s, {});
    QCOMPARE(urls().size(), 1);
}

void RecentItemsTest::remembersPlaylists()
{
    const QUrl good(u"http://h/good.m3u"_s);
    const QUrl bad(u"http://h/bad.m3u"_s);
    m_world->player.openRemote(bad.toString(), {});
    m_world->http.respond(bad, 404, "x");
    m_world->player.openRemote(good.toString(), u"Mine"_s);
    QCOMPARE(urls(), QList<QUrl>());
    m_world->http.respond(good, 200, "#EXTM3U\n#EXTINF:-1,One\nhttp://h/1.ts\n");
    m_world->scheduler.runBackground();
    QCOMPARE(recent().items(), (QList<RecentItem>{{good, u"Mine"_s}}));
}

void RecentItemsTest::leavesOutWhatIsPickedFromAList()
{
    m_world->player.play(address(1), u"Channel"_s, true);
    Q_EMIT m_world->mediaPlayer.itemStarted();
    QCOMPARE(urls(), QList<QUrl>());
}

void RecentItemsTest::keepsTheNewest()
{
    for (int number = 1; number <= 25; ++number)
        play(address(number));
    QCOMPARE(urls().size(), 20);
    QCOMPARE(urls().first(), address(25));
    QCOMPARE(urls().last(), address(6));
    play(address(10));
    QCOMPARE(urls().size(), 20);
    QCOMPARE(urls().first(), address(10));
    QCOMPARE(urls().count(address(10)), 1);
    // Longer than any address that is meant.
    play(QUrl(u"http://h/"_s + QString(RecentItems::maximumAddressLength, u'a')));
    QCOMPARE(urls().first(), address(10));
}

void RecentItemsTest::comesBackAtTheNextStart()
{
    const QUrl odd = QUrl::fromLocalFile(u"/films/100% #1 Ü.mp4"_s);
    play(address(1), u"One"_s);
    m_world->player.playFile(odd);
    Q_EMIT m_world->mediaPlayer.itemStarted();
    m_world->scheduler.runBackground();
    const RecentItems next({m_world->player, m_world->mediaPlayer, m_world->shell,
                            m_world->defaults, m_world->scheduler});
    QCOMPARE(next.items(), (QList<RecentItem>{{odd, {}}, {address(1), u"One"_s}}));
}

void RecentItemsTest::readsWhateverIsStored_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("setAside");
    QTest::newRow("no JSON") << QByteArray("}{") << 0 << true;
    QTest::newRow("no list") << QByteArray("{\"url\":\"http://h/1\"}") << 0 << true;
    QTest::newRow("other things in it")
        << QByteArray("[1,null,[],\"http://h/1\",{},{\"url\":7},{\"url\":\"http://h/1\"}]") << 1
        << false;
    QTest::newRow("addresses that are not opened")
        << QByteArray("[{\"url\":\"av://x\"},{\"url\":\"a.mp4\"},{\"url\":\"http://\"},"
                      "{\"url\":\"file:///a.mp4\"}]")
        << 1 << false;
    QByteArray many("[");
    for (int i = 0; i < 1000; ++i)
        many += "{\"url\":\"http://h/" + QByteArray::number(i) + "\"},";
    QTest::newRow("too many") << many.chopped(1) + ']' << 20 << false;
}

void RecentItemsTest::readsWhateverIsStored()
{
    QFETCH(const QByteArray, stored);
    m_world->defaults.values.insert(key, stored);
    const RecentItems read({m_world->player, m_world->mediaPlayer, m_world->shell,
                            m_world->defaults, m_world->scheduler});
    QTEST(int(read.items().size()), "count");
    QTEST(!m_world->defaults.setAsideValues.isEmpty(), "setAside");
}

void RecentItemsTest::tellsNamesakesApart()
{
    for (const QString &path : {u"/a/film.mp4"_s, u"/b/film.mp4"_s, u"/b/other\n.mp4"_s}) {
        m_world->player.playFile(QUrl::fromLocalFile(path));
        Q_EMIT m_world->mediaPlayer.itemStarted();
    }
    play(QUrl(u"http://me:secret@h/a%20b.php?password=secret"_s));
    play(address(1), u"A\nname"_s);
    QStringList titles;
    for (const RecentItem &item : recent().items())
        titles.append(recent().title(item));
    QCOMPARE(titles,
             QStringList({u"A name"_s, u"http://h/a b.php?…"_s, u"other .mp4"_s, u"film.mp4 — /b"_s,
                          u"film.mp4 — /a"_s}));
}

void RecentItemsTest::showsNoPasswords_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("title");
    QTest::newRow("plain") << u"http://h:8080/a%20b.m3u8"_s << u"http://h:8080/a b.m3u8"_s;
    QTest::newRow("no path") << u"https://h"_s << u"https://h/"_s;
    QTest::newRow("user") << u"https://me:secret@h/a.mp4"_s << u"https://h/a.mp4"_s;
    QTest::newRow("query") << u"http://h/get.php?password=secret"_s << u"http://h/get.php?…"_s;
    QTest::newRow("folders") << u"http://h/live/me/secret/7.m3u8"_s << u"http://h/…/7.m3u8"_s;
    QTest::newRow("folder at the end") << u"http://h/me/secret/"_s << u"http://h/…/"_s;
    QTest::newRow("fragment") << u"http://h/a.mp4#secret"_s << u"http://h/a.mp4"_s;
}

void RecentItemsTest::showsNoPasswords()
{
    QFETCH(const QString, address);
    QTEST(recent().title({QUrl(address), {}}), "title");
}

void RecentItemsTest::opensAgain()
{
    const QString path = file(u"film.mp4"_s);
    recent().open({QUrl::fromLocalFile(path), {}});
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->player.currentURL(), QUrl::fromLocalFile(path));
    recent().open({address(1), u"One"_s});
    QCOMPARE(m_world->player.currentURL(), address(1));
    QCOMPARE(m_world->player.title(), u"One"_s);
}

void RecentItemsTest::lateAnswersChangeNothing_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<bool>("stops");
    for (const bool exists : {false, true}) {
        QTest::addRow("%s, another plays", exists ? "film" : "missing") << exists << false;
        QTest::addRow("%s, stopped", exists ? "film" : "missing") << exists << true;
    }
}

void RecentItemsTest::lateAnswersChangeNothing()
{
    QFETCH(const bool, exists);
    QFETCH(const bool, stops);
    const QString path = exists ? file(u"late.mp4"_s) : m_folder.filePath(u"none.mp4"_s);
    recent().open({QUrl::fromLocalFile(path), {}});
    if (stops)
        m_world->player.stop();
    else
        m_world->player.playFile(QUrl::fromLocalFile(u"/other.mp4"_s));
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->player.currentURL(), stops ? QUrl() : QUrl::fromLocalFile(u"/other.mp4"_s));
    QCOMPARE(recent().missingFile(), QString());
}

void RecentItemsTest::asksAboutMissingFiles()
{
    const QString path = file(u"gone.mp4"_s);
    const RecentItem item{QUrl::fromLocalFile(path), {}};
    m_world->player.playFile(item.url);
    Q_EMIT m_world->mediaPlayer.itemStarted();
    play(address(1));
    QVERIFY(QFile::remove(path));
    for (const bool removes : {false, true}) {
        recent().open(item);
        m_world->scheduler.runBackground();
        QCOMPARE(recent().missingFile(), path);
        QCOMPARE(m_world->player.currentURL(), address(1));
        if (removes)
            recent().removeMissing();
        else
            recent().keepMissing();
        QCOMPARE(recent().missingFile(), QString());
        QCOMPARE(urls().contains(item.url), !removes);
    }
    // A window that closes meanwhile wants no answer.
    recent().open(item);
    m_world.reset();
}

void RecentItemsTest::clears()
{
    const QSignalSpy cleared(&recent(), &RecentItems::cleared);
    play(address(1));
    // It opened before, so it must not come back.
    m_world->player.openRemote(u"http://h/late.mp4"_s, {});
    recent().clear();
    Q_EMIT m_world->mediaPlayer.itemStarted();
    m_world->scheduler.runBackground();
    QCOMPARE(urls(), QList<QUrl>());
    QCOMPARE(m_world->defaults.values.value(key), "[]");
    QCOMPARE(cleared.count(), 1);
}

void RecentItemsTest::menuFollows()
{
    const std::unique_ptr<MenuCommand> menu(makeRecentMenu(recent(), nullptr));
    const auto titles = [&menu] {
        QStringList all;
        for (const MenuCommand *choice : menu->choices())
            all.append(choice->title());
        return all;
    };
    QCOMPARE(titles(), QStringList{u"Nothing Opened Yet"_s});
    QVERIFY(!menu->choices().first()->isEnabled());
    play(address(1), u"One"_s);
    play(address(2), u"Two"_s);
    QCOMPARE(titles(), QStringList({u"Two"_s, u"One"_s, u"Clear Recent"_s}));
    menu->choices()[1]->trigger();
    QCOMPARE(m_world->player.currentURL(), address(1));
    menu->choices().last()->trigger();
    QCOMPARE(titles(), QStringList{u"Nothing Opened Yet"_s});
}

QTEST_GUILESS_MAIN(RecentItemsTest)
#include "tst_recentitems.moc"
