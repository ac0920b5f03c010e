#include "playlist/LocalM3UHistory.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

struct World
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    LocalM3UStore store{defaults, scheduler};
    LocalM3UHistory history{store};

    void save(const QString &name) { store.save(QUrl(u"http://h/" + name), name); }
    void removeForGood(qsizetype index) { history.deleteForGood(store.entries().id(index)); }
    /// The names in one word, as stored after everything has been written.
    QString names()
    {
        scheduler.runBackground();
        const LocalM3UStore next(defaults, scheduler);
        QString names;
        for (const PlaylistEntry &entry : next.entries().toList())
            names += entry.name;
        return next.entries() == store.entries() ? names : u"not stored"_s;
    }
};

} // namespace

class LocalM3UHistoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesBackAndForth();
    void goesBackToWhatWasStored();
    void newChangeEndsRedo();
    void forgetsTheOldest();
    void deletedStaysDeleted();
    void deletedStaysDeletedUnderOtherIds();
    void deletedAllStaysDeleted();
};

void LocalM3UHistoryTest::goesBackAndForth()
{
    World world;
    QVERIFY(!world.history.canUndo() && !world.history.canRedo());
    world.save(u"a"_s);
    world.save(u"b"_s);
    world.save(u"a"_s);
    QCOMPARE(world.names(), u"ab"_s);
    const QStringList states{u"ba"_s, u"a"_s, QString()};
    for (const QString &state : states) {
        QVERIFY(world.history.canUndo());
        world.history.undo();
        QCOMPARE(world.names(), state);
    }
    QVERIFY(!world.history.canUndo());
    world.history.undo();
    QCOMPARE(world.names(), QString());
    for (int i = 0; i < 4; ++i)
        world.history.redo();
    QVERIFY(!world.history.canRedo());
    QCOMPARE(world.names(), u"ab"_s);
}

void LocalM3UHistoryTest::goesBackToWhatWasStored()
{
    World world;
    world.save(u"a"_s);
    world.scheduler.runBackground();
    // Changed before it is there.
    LocalM3UStore store(world.defaults, world.scheduler);
    LocalM3UHistory history(store);
    store.save(QUrl(u"http://h/b"_s), u"b"_s);
    QCOMPARE(store.entries().size(), 2);
    history.undo();
    QCOMPARE(store.entries(), world.store.entries());
    QVERIFY(!history.canUndo());
}

void LocalM3UHistoryTest::newChangeEndsRedo()
{
    World world;
    world.save(u"a"_s);
    world.history.undo();
    world.save(u"b"_s);
    QVERIFY(!world.history.canRedo());
    world.history.undo();
    QCOMPARE(world.names(), QString());
}

void LocalM3UHistoryTest::forgetsTheOldest()
{
    World world;
    for (qsizetype i = 0; i < LocalM3UHistory::depth + 5; ++i)
        world.save(QString(QChar(int(u'a' + i))));
    while (world.history.canUndo())
        world.history.undo();
    QCOMPARE(world.names(), u"edcba"_s);
}

void LocalM3UHistoryTest::deletedStaysDeleted()
{
    World world;
    world.save(u"a"_s);
    world.save(u"b"_s);
    world.save(u"c"_s);
    world.history.undo();
    world.removeForGood(0);
    QCOMPARE(world.names(), u"a"_s);
    world.history.redo();
    QCOMPARE(world.names(), u"ca"_s);
    world.history.undo();
    // Adding b is no step any more.
    world.history.undo();
    QCOMPARE(world.names(), QString());
    QVERIFY(!world.history.canUndo());
    world.history.redo();
    world.history.redo();
    QCOMPARE(world.names(), u"ca"_s);
    QVERIFY(!world.history.canRedo());
}

void LocalM3UHistoryTest::deletedStaysDeletedUnderOtherIds()
{
    World world;
    // Saved again and again, it has a new id each time.
    for (const QString &name : {u"a"_s, u"b"_s, u"a"_s, u"c"_s, u"a"_s})
        world.save(name);
    world.removeForGood(0);
    for (int i = 0; i < LocalM3UHistory::depth; ++i) {
        QVERIFY(!world.names().contains(u'a'));
        world.history.undo();
    }
    QCOMPARE(world.names(), QString());

    // Its address may have been edited before.
    world.save(u"e"_s);
    PlaylistEntry edited = world.store.entries().at(0);
    edited.url = QUrl(u"http://h/edited"_s);
    world.store.setEntries(world.store.entries().replacing(0, 1, {edited}));
    world.removeForGood(0);
    world.history.undo();
    QCOMPARE(world.names(), QString());

    // In a list that holds the link twice, one of them stays, and so do those before.
    PlaylistEntry link;
    link.id = QUuid::createUuid();
    link.name = u"x"_s;
    link.url = QUrl(u"http://h/x"_s);
    PlaylistEntry twin = link;
    twin.id = QUuid::createUuid();
    twin.name = u"X"_s;
    world.store.setEntries(PlaylistEntries::fromList({link, twin}));
    world.store.setEntries(PlaylistEntries::fromList({twin, link}));
    world.removeForGood(0);
    QCOMPARE(world.names(), u"x"_s);
    world.removeForGood(0);
    world.history.undo();
    QCOMPARE(world.names(), QString());

    // An imported list may hold it any number of times, and other links with its id.
    PlaylistEntry other = link;
    other.url = QUrl(u"http://h/y"_s);
    other.name = u"y"_s;
    QList<PlaylistEntry> many(20'000, twin);
    many += {other, other};
    world.store.setEntries(PlaylistEntries::fromList(many));
    world.store.setEntries(PlaylistEntries::fromList({link}));
    world.removeForGood(0);
    world.history.undo();
    QCOMPARE(world.names(), u"y"_s);
}

void LocalM3UHistoryTest::deletedAllStaysDeleted()
{
    World world;
    world.save(u"a"_s);
    world.save(u"b"_s);
    world.history.undo();
    world.history.deleteAllForGood();
    QVERIFY(!world.history.canUndo() && !world.history.canRedo());
    world.history.undo();
    world.history.redo();
    QCOMPARE(world.names(), QString());
}

QTEST_GUILESS_MAIN(LocalM3UHistoryTest)
#include "tst_localm3uhistory.moc"
