#include "app/LocalM3UCommands.h"
#include "app/LocalM3UModel.h"
#include "tests/app/ShellWorld.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

using Section = MainWindowModel::PlayerSidebarSection;

/// A library on fakes, as large as its letters.
struct World : ShellWorld
{
    LocalM3UStore store{defaults, scheduler};
    LocalM3UModel library{{store, player, shell, panels, scheduler, scheduler}};
    QTemporaryDir folder;

    void set(const QString &letters)
    {
        QList<PlaylistEntry> links;
        for (const QChar letter : letters)
            links.append({.id = QUuid::createUuid(),
                          .name = letter,
                          .url = QUrl(u"http://h/" + letter + u".m3u8"),
                          .logoURL = {},
                          .groupTitle = {},
                          .countryCode = {}});
        store.setEntries(PlaylistEntries::fromList(links));
    }
    QString names()
    {
        scheduler.runBackground();
        QString names;
        for (const PlaylistEntry &entry : store.entries().toList())
            names += entry.name;
        return names;
    }
    /// What the next launch would find.
    QString storedNames()
    {
        scheduler.runBackground();
        LocalM3UStore next(defaults, scheduler);
        return next.entries() == store.entries() ? names() : u"something else"_s;
    }
    QUrl write(const QString &name, const QByteArray &content)
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("No file for the test.");
        return QUrl::fromLocalFile(file.fileName());
    }
    void loadPlaylist()
    {
        player.importM3UFile(write(u"channels.m3u"_s,
                                   "#EXTINF:-1 tvg-logo=\"http://l/1\" group-title=\"G\" "
                                   "tvg-country=\"TR\",One\nhttp://h/1.m3u8\n"
                                   "#EXTINF:-1,Two\nhttp://h/2.ts\n"),
                             {});
        scheduler.runBackground();
    }
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(World &)>)

class LocalM3UModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savesAChannel();
    void networkListNamesNoFiles();
    void savesWhatPlays();
    void savesWhatPlaysAfterItsListHasGone_data();
    void savesWhatPlaysAfterItsListHasGone();
    void showsWhatIsSavedAlready();
    void waitsForTheLibrary();
    void savesUnderAName_data();
    void savesUnderAName();
    void plays_data();
    void plays();
    void aLinkToAChannelListOpensIt();
    void addsAndEdits();
    void editOfADeletedLinkIsKept();
    void asksBeforeDeleting_data();
    void asksBeforeDeleting();
    void deletesOnlyWhatWasAgreedTo();
    void deletesNoOtherLibrary_data();
    void deletesNoOtherLibrary();
    void importReplacesTheLibrary();
    void lastOfTwoImportsCounts();
    void importsWhileSomethingElseIsOpened_data();
    void importsWhileSomethingElseIsOpened();
    void aRequestWhileThePanelIsOpenLosesNothing();
    void badImportsLoseNothing_data();
    void badImportsLoseNothing();
    void drops_data();
    void drops();
    void tellsOfWhatWasDroppedInVain_data();
    void tellsOfWhatWasDroppedInVain();
    void exports();
    void saysWhyItCannotExport();
    void namesExportsByTheirDay();
    void saysWhatIsNotStored();
    void commandsFollowTheState();
    void tellsOfUnseenUndo();
    void searchesWhatThereIs_data();
    void searchesWhatThereIs();
};

void LocalM3UModelTest::savesAChannel()
{
    World world;
    world.loadPlaylist();
    world.set(u"ab"_s);
    world.library.saveToLocalM3U(0);
    const PlaylistEntry saved = world.store.entries().at(0);
    const PlaylistEntry channel = world.player.playlist().at(0);
    QCOMPARE(saved.name, u"One"_s);
    QCOMPARE(saved.url, channel.url);
    QCOMPARE(saved.logoURL, channel.logoURL);
    QCOMPARE(saved.groupTitle, u"G"_s);
    QCOMPARE(saved.countryCode, u"TR"_s);
    QVERIFY(saved.id != channel.id);
    QCOMPARE(world.player.toastMessage(), u"Saved to Local M3U: One"_s);
    world.scheduler.advance(2799ms);
    QVERIFY(!world.player.toastMessage().isEmpty());
    world.scheduler.advance(1ms);
    QCOMPARE(world.player.toastMessage(), QString());

    world.library.saveToLocalM3U(1);
    world.library.saveToLocalM3U(0);
    for (const int index : {-1, 2})
        world.library.saveToLocalM3U(index);
    QCOMPARE(world.storedNames(), u"OneTwoab"_s);
    QCOMPARE(world.shell.sidebarSection(), Section::network);
}

void LocalM3UModelTest::networkListNamesNoFiles()
{
    World world;
    world.player.openRemote(u"http://h/list.m3u"_s, {});
    world.http.respond(QUrl(u"http://h/list.m3u"_s), 200,
                       "#EXTINF:-1,Secret\nfile:///etc/passwd\n"
                       "#EXTINF:-1 tvg-logo=\"file:///home/me/a.png\",TV\nhttp://h/1\n"_ba);
    world.scheduler.runBackground();
    QCOMPARE(world.player.playlist().size(), 2);
    world.library.saveToLocalM3U(0);
    QCOMPARE(world.names(), QString());
    QCOMPARE(world.player.toastMessage(),
             u"A playlist from the network cannot open files on this computer."_s);
    world.library.saveToLocalM3U(1);
    QCOMPARE(world.names(), u"TV"_s);
    QVERIFY(!world.store.entries().at(0).logoURL);
}

void LocalM3UModelTest::savesWhatPlays()
{
    World world;
    QVERIFY(!world.library.canSaveCurrent() && !world.library.isCurrentSaved());
    world.library.saveCurrent();
    QCOMPARE(world.names(), QString());

    QSignalSpy changed(&world.library, &LocalM3UModel::currentChanged);
    world.player.play(QUrl(u"http://h/live/x.m3u8"_s), u"X"_s, true);
    QVERIFY(world.library.canSaveCurrent() && !world.library.isCurrentSaved());
    world.library.saveCurrent();
    QVERIFY(world.library.isCurrentSaved());
    QCOMPARE(changed.count(), 2);
    QCOMPARE(world.player.toastMessage(), u"Saved to Local M3U: X"_s);

    // A channel keeps what the playlist says of it.
    world.loadPlaylist();
    world.shell.playChannel(0);
    world.library.saveCurrent();
    QCOMPARE(world.store.entries().at(0).groupTitle, u"G"_s);
    QCOMPARE(world.storedNames(), u"OneX"_s);
    world.player.stop();
    QVERIFY(!world.library.canSaveCurrent() && !world.library.isCurrentSaved());
}

void LocalM3UModelTest::savesWhatPlaysAfterItsListHasGone_data()
{
    QTest::addColumn<bool>("isChannel");
    QTest::newRow("channel") << true;
    QTest::newRow("address") << false;
}

void LocalM3UModelTest::savesWhatPlaysAfterItsListHasGone()
{
    QFETCH(const bool, isChannel);
    World world;
    world.loadPlaylist();
    if (isChannel)
        world.shell.playChannel(0);
    else
        world.player.openRemote(u"http://h/1.m3u8"_s, u"One"_s);
    world.player.importM3UFile(world.write(u"other.m3u"_s, "http://h/other\n"), {});
    world.scheduler.runBackground();
    QCOMPARE(world.player.title(), u"other"_s);
    for (const bool isReplayed : {false, true}) {
        if (isReplayed) {
            world.store.setEntries({});
            world.player.stop();
            world.player.togglePlayback();
        }
        world.library.saveCurrent();
        const PlaylistEntry saved = world.store.entries().at(0);
        QCOMPARE(saved.name, u"One"_s);
        QCOMPARE(saved.url, QUrl(u"http://h/1.m3u8"_s));
        QCOMPARE(saved.groupTitle, isChannel ? std::optional(u"G"_s) : std::nullopt);
        QCOMPARE(saved.logoURL, isChannel ? std::optional(QUrl(u"http://l/1"_s)) : std::nullopt);
        QCOMPARE(world.shell.currentChannel(), -1);
    }
}

void LocalM3UModelTest::showsWhatIsSavedAlready()
{
    World world;
    world.set(u"abc"_s);
    world.library.list()->setFilterText(u"a"_s);
    world.scheduler.runBackground();
    world.shell.setSidebarVisible(false);
    world.library.list()->selectRow(0);
    world.player.play(QUrl(u"http://h/c.m3u8"_s), u"Other name"_s, true);
    world.library.saveCurrent();
    QCOMPARE(world.names(), u"abc"_s);
    QVERIFY(world.shell.sidebarVisible() && world.shell.showsLocalM3U());
    QCOMPARE(world.library.list()->selectedRow(), 2);
}

void LocalM3UModelTest::waitsForTheLibrary()
{
    World before;
    before.set(u"ab"_s);
    before.store.persist();
    before.scheduler.runBackground();

    World world;
    world.defaults.values = before.defaults.values;
    world.player.play(QUrl(u"http://h/b.m3u8"_s), u"Other name"_s, true);
    QSignalSpy changed(&world.library, &LocalM3UModel::currentChanged);
    // Nobody has to wait only to be shown something.
    QVERIFY(world.store.isLoading() && !world.library.isCurrentSaved());
    world.library.saveCurrent();
    QCOMPARE(world.names(), u"ab"_s);
    QVERIFY(world.library.isCurrentSaved());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(world.library.list()->selectedRow(), -1);
}

void LocalM3UModelTest::savesUnderAName_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("name");
    QTest::newRow("title") << u"News"_s << u"News"_s;
    QTest::newRow("the product's") << productName() << u"channel"_s;
}

void LocalM3UModelTest::savesUnderAName()
{
    QFETCH(const QString, title);
    World world;
    world.player.play(QUrl(u"http://h/live/channel.m3u8"_s), title, true);
    world.library.saveCurrent();
    QTEST(world.names(), "name");
}

void LocalM3UModelTest::plays_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("playing");
    QTest::addColumn<bool>("live");
    QTest::newRow("live stream") << u"http://h/a.M3U8"_s << u"http://h/a.M3U8"_s << true;
    QTest::newRow("other stream") << u"http://h/a?type=m3u8"_s << u"http://h/a?type=m3u8"_s
                                  << false;
    QTest::newRow("file") << u"file:///a.mp4"_s << u"file:///a.mp4"_s << false;
    QTest::newRow("playlist") << u"http://h/a.m3u"_s << QString() << false;
    QTest::newRow("web player") << u"https://www.youtube.com/watch?v=x"_s << QString() << false;
}

void LocalM3UModelTest::plays()
{
    QFETCH(const QString, address);
    World world;
    world.store.save(QUrl(address), u"Name"_s);
    world.library.play(0);
    QTEST(world.player.currentURL().toString(), "playing");
    QTEST(world.player.isLiveStream(), "live");
    QCOMPARE(world.player.title(), world.http.requests().isEmpty() ? u"Name"_s : productName());
    world.library.play(1);
    world.library.play(-1);
}

void LocalM3UModelTest::aLinkToAChannelListOpensIt()
{
    World world;
    const QUrl list = world.write(u"list.m3u"_s, "#EXTINF:-1,x\nhttp://h/x\n");
    world.store.save(list, u"Name"_s);
    world.library.play(0);
    world.scheduler.runBackground();
    QCOMPARE(world.player.playlist().size(), 1);
    QCOMPARE(world.player.title(), u"Name"_s);
    QCOMPARE(world.store.entries().at(0).url, list);
}

void LocalM3UModelTest::addsAndEdits()
{
    World world;
    world.set(u"ab"_s);
    LocalM3UEditor &editor = *world.library.editor();
    world.library.add();
    QVERIFY(editor.isOpen() && world.shell.showsLocalM3U());
    editor.setName(u"c"_s);
    editor.setAddress(u"http://h/c.m3u8"_s);
    editor.save();
    QCOMPARE(world.storedNames(), u"cab"_s);
    QCOMPARE(world.library.list()->selectedRow(), 0);

    world.library.edit(2);
    QCOMPARE(editor.name(), u"b"_s);
    editor.setName(u"B"_s);
    editor.save();
    QCOMPARE(world.storedNames(), u"caB"_s);
    QCOMPARE(world.library.list()->selectedRow(), 2);

    // Nothing was changed, so there is nothing more to take back.
    world.library.edit(0);
    editor.save();
    world.library.history()->undo();
    QCOMPARE(world.storedNames(), u"cab"_s);
    world.library.history()->undo();
    QCOMPARE(world.storedNames(), u"ab"_s);

    world.library.add();
    editor.setName(u"A"_s);
    editor.setAddress(u"http://h/a.m3u8"_s);
    editor.save();
    QCOMPARE(world.storedNames(), u"Ab"_s);
    QCOMPARE(world.player.toastMessage(), u"Replaced the link with the same address."_s);
    world.library.edit(7);
    QVERIFY(!editor.isOpen());
}

void LocalM3UModelTest::editOfADeletedLinkIsKept()
{
    World world;
    world.set(u"ab"_s);
    world.library.edit(1);
    // The stream finder saves the same address meanwhile.
    world.store.save(QUrl(u"http://h/b.m3u8"_s), u"found"_s);
    world.library.editor()->setName(u"B"_s);
    world.library.editor()->save();
    QCOMPARE(world.storedNames(), u"Ba"_s);
}

void LocalM3UModelTest::asksBeforeDeleting_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    const QString unnamed =
        u"Are you sure you want to delete this channel? This action cannot be undone."_s;
    QTest::newRow("name") << u"A \"B\""_s
                          << u"Are you sure you want to delete \"A \"B\"\" from Local M3U? This "
                             "action cannot be undone."_s;
    QTest::newRow("blank name") << u" "_s << unnamed;
    QTest::newRow("endless name") << QString(1000, u'x') << unnamed;
}

void LocalM3UModelTest::asksBeforeDeleting()
{
    QFETCH(const QString, name);
    World world;
    world.set(u"ab"_s);
    PlaylistEntry entry = world.store.entries().at(1);
    entry.name = name;
    world.store.setEntries(world.store.entries().replacing(1, 1, {entry}));
    world.library.remove(1);
    QTEST(world.library.questionText(), "text");
    QCOMPARE(world.library.questionButton(), u"Delete"_s);
    world.library.disagree();
    QCOMPARE(world.library.questionText(), QString());
    world.library.agree();
    QCOMPARE(world.store.entries().size(), 2);

    world.library.remove(1);
    // Another link takes its place while the user thinks.
    world.store.save(QUrl(u"http://h/new"_s), u"new"_s);
    world.library.agree();
    QCOMPARE(world.storedNames(), u"newa"_s);
    QCOMPARE(world.library.questionText(), QString());
}

void LocalM3UModelTest::deletesOnlyWhatWasAgreedTo()
{
    World world;
    world.library.removeAll();
    world.library.remove(0);
    QCOMPARE(world.library.questionText(), QString());
    world.set(u"abc"_s);
    world.library.removeAll();
    QCOMPARE(world.library.questionTitle(), u"Delete All Local M3U8 Links?"_s);
    QCOMPARE(
        world.library.questionText(),
        u"This permanently deletes every saved local M3U8 link. This action cannot be undone."_s);
    QCOMPARE(world.library.questionButton(), u"Delete Permanently"_s);
    world.library.disagree();
    QCOMPARE(world.names(), u"abc"_s);
    world.library.removeAll();
    world.library.agree();
    QCOMPARE(world.storedNames(), QString());
    QVERIFY(!world.library.history()->canUndo());
}

void LocalM3UModelTest::deletesNoOtherLibrary_data()
{
    QTest::addColumn<std::function<void(World &)>>("change");
    QTest::addColumn<QString>("left");
    const auto row = [](const char *name, std::function<void(World &)> change,
                        const QString &left) { QTest::newRow(name) << change << left; };
    row(
        "dropped list",
        [](World &world) {
            world.library.drop({world.write(u"new.m3u"_s, "#EXTINF:-1,x\nhttp://h/x\n")}, {});
            world.scheduler.runBackground();
        },
        u"x"_s);
    row(
        "saved link", [](World &world) { world.store.save(QUrl(u"http://h/d"_s), u"d"_s); },
        u"dabc"_s);
    row("undo", [](World &world) { world.library.undo(); }, QString());
}

void LocalM3UModelTest::deletesNoOtherLibrary()
{
    QFETCH(const std::function<void(World &)>, change);
    QFETCH(const QString, left);
    World world;
    world.set(u"abc"_s);
    world.library.removeAll();
    const QSignalSpy questions(&world.library, &LocalM3UModel::questionChanged);
    change(world);
    QCOMPARE(world.library.questionText(), QString());
    QCOMPARE(questions.count(), 1);
    world.library.agree();
    QCOMPARE(world.names(), left);
}

void LocalM3UModelTest::importReplacesTheLibrary()
{
    World world;
    world.set(u"abc"_s);
    world.shell.setSidebarSection(Section::localM3U);
    QSignalSpy sections(&world.shell, &MainWindowModel::sidebarSectionChanged);
    world.panels.choice = world.write(u"new.m3u"_s, "#EXTINF:-1,x\nhttp://h/x\n\nhttp://h/y\n");
    world.library.importLocalPlaylist();
    QCOMPARE(world.panels.requests.last().title, u"Import M3U Playlist"_s);
    QCOMPARE(world.storedNames(), u"xy"_s);
    QCOMPARE(world.player.toastMessage(),
             u"Imported 2 links in place of 3 links. Undo brings them back."_s);
    QCOMPARE(sections.count(), 0);
    world.library.history()->undo();
    QCOMPARE(world.storedNames(), u"abc"_s);

    // Loading a channel list leads to the other section as before.
    world.loadPlaylist();
    QCOMPARE(world.shell.sidebarSection(), Section::network);
}

void LocalM3UModelTest::lastOfTwoImportsCounts()
{
    World world;
    world.shell.setSidebarSection(Section::localM3U);
    world.library.drop({world.write(u"first.m3u"_s, "http://h/first\n")}, {});
    world.library.drop({world.write(u"second.m3u"_s, "http://h/second\n")}, {});
    // The first is still being read when the second has been.
    world.scheduler.runNewestBackground();
    QCOMPARE(world.store.entries().size(), 1);
    QCOMPARE(world.names(), u"second"_s);
    QCOMPARE(world.shell.sidebarSection(), Section::localM3U);
}

void LocalM3UModelTest::importsWhileSomethingElseIsOpened_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("error");
    QTest::newRow("good") << QByteArray("#EXTINF:-1,x\nhttp://h/x\n") << u"x"_s << QString();
    QTest::newRow("bad") << QByteArray("#EXTM3U\n") << u"a"_s
                         << u"Could not import playlist: "
                            "No playable address was found in the playlist."_s;
}

void LocalM3UModelTest::importsWhileSomethingElseIsOpened()
{
    QFETCH(const QByteArray, content);
    World world;
    world.set(u"a"_s);
    world.shell.setSidebarSection(Section::localM3U);
    world.library.drop({world.write(u"slow.m3u"_s, content)}, {});
    world.player.openRemote(u"http://h/list.m3u"_s, u"Mine"_s);
    world.http.respond(QUrl(u"http://h/list.m3u"_s), 200, "http://h/1.ts\n");
    world.scheduler.runNewestBackground();
    QTEST(world.names(), "names");
    QTEST(world.library.errorMessage(), "error");
    // The player has what was opened last.
    QCOMPARE(world.player.title(), u"Mine"_s);
    QCOMPARE(world.player.playlist().size(), 1);
    QCOMPARE(world.player.errorMessage(), QString());
    QCOMPARE(world.shell.sidebarSection(), Section::network);
}

void LocalM3UModelTest::aRequestWhileThePanelIsOpenLosesNothing()
{
    World world;
    world.panels.choice = world.write(u"new.m3u"_s, "#EXTINF:-1,x\nhttp://h/x\n");
    world.panels.whileOpen = [&world] { world.library.importLocalPlaylist(); };
    world.library.importLocalPlaylist();
    QCOMPARE(world.storedNames(), u"x"_s);
}

void LocalM3UModelTest::badImportsLoseNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error");
    const QString prefix = u"Could not import playlist: "_s;
    QTest::newRow("empty") << "#EXTM3U\n"_ba
                           << prefix + u"No playable address was found in the playlist."_s;
    QTest::newRow("binary") << QByteArray("\0\xff", 2)
                            << prefix + u"The playlist text could not be read."_s;
    QTest::newRow("cancelled") << QByteArray() << QString();
}

void LocalM3UModelTest::badImportsLoseNothing()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, error);
    World world;
    world.set(u"abc"_s);
    world.player.importM3UFile(QUrl(u"file:///nowhere.m3u"_s), {});
    world.scheduler.runBackground();
    QVERIFY(!world.player.errorMessage().isEmpty());
    if (!content.isNull())
        world.panels.choice = world.write(u"bad.m3u"_s, content);
    world.library.importLocalPlaylist();
    QCOMPARE(world.names(), u"abc"_s);
    QTEST(world.library.errorMessage(), "error");
    QVERIFY(!world.library.isNotStored());

    // It goes with the next change.
    world.store.save(QUrl(u"http://h/d"_s), u"d"_s);
    QCOMPARE(world.library.errorMessage(), QString());
}

void LocalM3UModelTest::drops_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("channel list") << u"a.m3u"_s << QString() << u"library x"_s;
    QTest::newRow("channel list, other name") << u"a.M3U8"_s << QString() << u"library x"_s;
    QTest::newRow("film") << u"a.mp4"_s << QString() << u"library a plays a.mp4"_s;
    QTest::newRow("address") << QString() << u" https://h/x.m3u8\n"_s
                             << u"library a form https://h/x.m3u8"_s;
    QTest::newRow("text") << QString() << u"not an address"_s << u"library a"_s;
    QTest::newRow("nothing") << QString() << u" "_s << u"library a refused"_s;
}

void LocalM3UModelTest::drops()
{
    QFETCH(const QString, file);
    QFETCH(const QString, text);
    World world;
    world.set(u"a"_s);
    QList<QUrl> urls;
    if (!file.isEmpty())
        urls.append(world.write(file, "#EXTINF:-1,x\nhttp://h/x\n"));
    const auto expected = world.library.dropAction(urls, text);
    QCOMPARE(world.names(), u"a"_s);
    const bool accepted = world.library.drop(urls, text);
    QString outcome = u"library " + world.names();
    if (world.player.currentURL().isLocalFile())
        outcome += u" plays " + world.player.currentURL().fileName();
    if (world.library.editor()->isOpen())
        outcome += u" form " + world.library.editor()->address();
    if (!accepted)
        outcome += u" refused";
    QTEST(outcome, "outcome");
    // It was said before.
    QCOMPARE(expected == LocalM3UModel::ImportDropped, world.names() == u"x");
    QCOMPARE(expected == LocalM3UModel::AddDropped, world.library.editor()->isOpen());
    QCOMPARE(expected == LocalM3UModel::NothingDropped, !accepted);
}

void LocalM3UModelTest::tellsOfWhatWasDroppedInVain_data()
{
    QTest::addColumn<QStringList>("dropped");
    QTest::addColumn<QString>("toast");
    const QString opened = u"Opened 1 of 2 items."_s;
    QTest::newRow("list and film")
        << QStringList{u"a.m3u"_s, u"b.mp4"_s}
        << u"Imported 1 link in place of 1 link. Undo brings them back. "_s + opened;
    QTest::newRow("addresses") << QStringList{u"http://h/1"_s, u"http://h/2"_s} << opened;
    QTest::newRow("film and list") << QStringList{u"b.mp4"_s, u"a.m3u"_s} << opened;
    QTest::newRow("films") << QStringList{u"b.mp4"_s, u"c.mp4"_s} << QString();
}

void LocalM3UModelTest::tellsOfWhatWasDroppedInVain()
{
    QFETCH(const QStringList, dropped);
    World world;
    world.set(u"a"_s);
    QList<QUrl> urls;
    for (const QString &name : dropped)
        urls.append(name.startsWith(u"http") ? QUrl(name) : world.write(name, "http://h/x\n"));
    QVERIFY(world.library.drop(urls, {}));
    world.scheduler.runBackground();
    QTEST(world.player.toastMessage(), "toast");
}

void LocalM3UModelTest::exports()
{
    World world;
    world.set(u"ab"_s);
    world.library.exportLocalPlaylistAsM3U();
    const SavePanelRequest request = world.panels.saveRequests.last();
    QCOMPARE(request.title, u"Export Local M3U Playlist"_s);
    QCOMPARE(request.prompt, u"Export"_s);
    QCOMPARE(request.extension, u"m3u"_s);
    QVERIFY(request.proposedName.startsWith(u"Lumaro "_s));
    QCOMPARE(world.player.toastMessage(), QString());

    world.panels.choice = world.write(u"My list.m3u"_s, QByteArray(1000, 'x'));
    world.library.exportLocalPlaylistAsM3U();
    world.scheduler.runBackground();
    QFile file(world.panels.choice->toLocalFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
             "#EXTM3U\n#EXTINF:-1 tvg-name=\"a\",a\nhttp://h/a.m3u8\n"
             "#EXTINF:-1 tvg-name=\"b\",b\nhttp://h/b.m3u8\n"_ba);
    QCOMPARE(world.player.toastMessage(), u"Exported: My list.m3u"_s);
    QCOMPARE(world.library.exportError(), QString());

    // And back again, whatever has changed meanwhile.
    const PlaylistEntries exported = world.store.entries();
    world.set(u"xyz"_s);
    world.library.importLocalPlaylist();
    QCOMPARE(world.storedNames(), u"ab"_s);
    QCOMPARE(world.store.entries().at(1).url, exported.at(1).url);

    world.set(QString());
    world.library.exportLocalPlaylistAsM3U();
    world.scheduler.runBackground();
    QFile empty(world.panels.choice->toLocalFile());
    QVERIFY(empty.open(QIODevice::ReadOnly));
    QCOMPARE(empty.readAll(), "#EXTM3U\n"_ba);
}

void LocalM3UModelTest::saysWhyItCannotExport()
{
    World world;
    world.set(u"a"_s);
    world.panels.choice = QUrl::fromLocalFile(world.folder.filePath(u"no/such/folder/a.m3u"_s));
    world.library.exportLocalPlaylistAsM3U();
    world.scheduler.runBackground();
    QVERIFY(!world.library.exportError().isEmpty());
    QCOMPARE(world.player.toastMessage(), QString());
    world.library.closeExportError();
    QCOMPARE(world.library.exportError(), QString());
}

void LocalM3UModelTest::namesExportsByTheirDay()
{
    QCOMPARE(exportFileName(QDate(2026, 3, 1)), u"Lumaro 2026-03-01.m3u"_s);
}

void LocalM3UModelTest::saysWhatIsNotStored()
{
    World world;
    world.defaults.failure = UserDefaultsError{UserDefaultsError::Kind::NoSpace};
    world.store.save(QUrl(u"http://h/a"_s), u"a"_s);
    world.scheduler.runBackground();
    const QString error = u"Local M3U could not be saved. There is no space left on the disk."_s;
    QVERIFY(world.library.isNotStored());
    QCOMPARE(world.library.errorMessage(), error);
    QCOMPARE(world.player.toastMessage(), error);
    // The next change says so again.
    world.scheduler.advance(PlayerModel::toastDuration);
    QCOMPARE(world.player.toastMessage(), QString());
    world.store.save(QUrl(u"http://h/a"_s), u"a"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.player.toastMessage(), error);
    world.defaults.failure.reset();
    world.library.tryAgain();
    QCOMPARE(world.storedNames(), u"a"_s);
    QVERIFY(!world.library.isNotStored());
    QCOMPARE(world.library.errorMessage(), QString());
}

void LocalM3UModelTest::commandsFollowTheState()
{
    World world;
    const LocalM3UCommands commands(world.library);
    const auto enabled = [&commands] {
        QStringList titles;
        for (const MenuCommand *command : commands.all()) {
            if (command->isEnabled())
                titles << command->title();
        }
        return titles;
    };
    const QStringList always{u"Show Local M3U"_s, u"Add Link…"_s, u"Import M3U File…"_s,
                             u"Export M3U File…"_s};
    QCOMPARE(enabled(), always);
    world.player.play(QUrl(u"http://h/a.m3u8"_s), u"a"_s, true);
    commands.all()[1]->trigger();
    QCOMPARE(enabled(),
             (QStringList{u"Show Local M3U"_s, u"Show in Local M3U"_s,
                          u"Search Channels and Links"_s, u"Add Link…"_s, u"Undo"_s,
                          u"Import M3U File…"_s, u"Export M3U File…"_s, u"Delete All…"_s}));
    commands.all()[4]->trigger();
    QCOMPARE(world.names(), QString());
    commands.all()[4]->trigger();
    commands.all()[5]->trigger();
    QCOMPARE(world.names(), u"a"_s);
}

void LocalM3UModelTest::tellsOfUnseenUndo()
{
    World world;
    world.set(u"a"_s);
    world.set(u"abc"_s);
    world.library.undo();
    QCOMPARE(world.player.toastMessage(), u"Undone in Local M3U, which has 1 link now."_s);
    world.library.redo();
    QCOMPARE(world.player.toastMessage(), u"Redone in Local M3U, which has 3 links now."_s);
    world.scheduler.advance(PlayerModel::toastDuration);
    world.library.show();
    world.library.undo();
    QCOMPARE(world.names(), u"a"_s);
    QCOMPARE(world.player.toastMessage(), QString());
    world.shell.setIsFullScreen(true);
    world.library.redo();
    QVERIFY(!world.player.toastMessage().isEmpty());
}

void LocalM3UModelTest::searchesWhatThereIs_data()
{
    QTest::addColumn<bool>("hasChannels");
    QTest::addColumn<QString>("links");
    QTest::addColumn<bool>("showsLibrary");
    QTest::addColumn<QString>("searched"); // empty for nothing
    QTest::newRow("nothing") << false << QString() << false << QString();
    QTest::newRow("channels") << true << QString() << false << u"channels"_s;
    QTest::newRow("links") << false << u"ab"_s << false << u"links"_s;
    QTest::newRow("both") << true << u"ab"_s << false << u"channels"_s;
    QTest::newRow("both, the links in sight") << true << u"ab"_s << true << u"links"_s;
    QTest::newRow("no links in sight") << true << QString() << true << u"channels"_s;
}

void LocalM3UModelTest::searchesWhatThereIs()
{
    QFETCH(const bool, hasChannels);
    QFETCH(const QString, links);
    QFETCH(const bool, showsLibrary);
    QFETCH(const QString, searched);
    World world;
    const LocalM3UCommands commands(world.library);
    if (hasChannels)
        world.loadPlaylist();
    world.set(links);
    QString found;
    connect(&world.shell, &MainWindowModel::channelSearchRequested, this,
            [&] { found += u"channels"; });
    connect(&world.library, &LocalM3UModel::focusRequested, this, [&] { found += u"links"; });
    for (const bool isSeen : {true, false}) {
        world.shell.setSidebarSection(showsLibrary ? Section::localM3U : Section::network);
        world.shell.setSidebarVisible(isSeen || showsLibrary);
        found.clear();
        commands.all()[2]->trigger();
        QCOMPARE(found, searched);
        if (!searched.isEmpty())
            QCOMPARE(world.shell.sidebarSection(),
                     searched == u"links" ? Section::localM3U : Section::network);
    }
    QVERIFY(world.shell.sidebarVisible() != searched.isEmpty());
}

QTEST_GUILESS_MAIN(LocalM3UModelTest)
#include "tst_localm3umodel.moc"
