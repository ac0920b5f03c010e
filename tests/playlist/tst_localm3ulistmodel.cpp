#include "playlist/LocalM3UListModel.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// One link for each letter.
QList<PlaylistEntry> links(const QString &letters)
{
    QList<PlaylistEntry> links;
    for (const QChar letter : letters)
        links.append({.id = QUuid::createUuidV5(QUuid(), QString(letter)),
                      .name = letter,
                      .url = QUrl(u"http://h/" + letter),
                      .logoURL = {},
                      .groupTitle = {},
                      .countryCode = {}});
    return links;
}

struct World
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    LocalM3UStore store{defaults, scheduler};
    LocalM3UListModel model{store, scheduler};
    QAbstractItemModelTester tester{&model};

    World() { scheduler.runBackground(); }
    void set(const QString &letters)
    {
        store.setEntries(PlaylistEntries::fromList(links(letters)));
    }
    void search(const QString &text)
    {
        model.setFilterText(text);
        scheduler.runBackground();
    }
    QString rows() const
    {
        QString rows;
        for (int row = 0; row < model.rowCount(); ++row)
            rows += value(row, LocalM3UListModel::NameRole).toString();
        return rows;
    }
    QVariant value(int row, int role) const { return model.data(model.index(row), role); }
    QString selected() const
    {
        const qsizetype index = store.entries().indexOf(model.idAt(model.selectedRow()));
        return index < 0 ? QString() : store.entries().name(index).toString();
    }
};

} // namespace

class LocalM3UListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void touchesOnlyWhatChanged_data();
    void touchesOnlyWhatChanged();
    void showsTheLibraryOnceItIsThere();
    void searches();
    void changesReachASearch();
    void newestSearchWins();
    void selectionFollowsItsLink_data();
    void selectionFollowsItsLink();
    void selectionMoves();
    void newSearchSelectsItsFirstMatch();
    void showsValues();
    void showsOnlyHarmlessLogos_data();
    void showsOnlyHarmlessLogos();
    void marksWhatPlays();
};

void LocalM3UListModelTest::touchesOnlyWhatChanged_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("log");
    QTest::newRow("first link") << u""_s << u"a"_s << u"+0-0 "_s;
    QTest::newRow("to the front") << u"bc"_s << u"abc"_s << u"+0-0 "_s;
    QTest::newRow("twice the same") << u"ab"_s << u"aab"_s << u"+1-1 "_s;
    QTest::newRow("one gone") << u"abcd"_s << u"abd"_s << u"-2-2 "_s;
    QTest::newRow("all gone") << u"abc"_s << u""_s << u"-0-2 "_s;
    QTest::newRow("edited") << u"abc"_s << u"axc"_s << u"=1-1 "_s;
    QTest::newRow("moved up") << u"abcd"_s << u"cabd"_s << u"=0-2 "_s;
    QTest::newRow("replaced") << u"abc"_s << u"vwxyz"_s << u"-0-2 +0-4 "_s;
    QTest::newRow("nothing") << u"abc"_s << u"abc"_s << u""_s;
}

void LocalM3UListModelTest::touchesOnlyWhatChanged()
{
    QFETCH(const QString, before);
    QFETCH(const QString, after);
    World world;
    world.set(before);
    QString log;
    const auto note = [&log](QChar sign) {
        return [&log, sign](const QModelIndex &, int first, int last) {
            log += u"%1%2-%3 "_s.arg(sign).arg(first).arg(last);
        };
    };
    const auto noteChange = [&log](const QModelIndex &first, const QModelIndex &last) {
        log += u"=%1-%2 "_s.arg(first.row()).arg(last.row());
    };
    const auto noteReset = [&log] { log += u"reset"; };
    connect(&world.model, &QAbstractItemModel::rowsInserted, this, note(u'+'));
    connect(&world.model, &QAbstractItemModel::rowsRemoved, this, note(u'-'));
    connect(&world.model, &QAbstractItemModel::dataChanged, this, noteChange);
    connect(&world.model, &QAbstractItemModel::modelReset, this, noteReset);
    QSignalSpy counted(&world.model, &LocalM3UListModel::countChanged);
    QSignalSpy matched(&world.model, &LocalM3UListModel::matchCountChanged);

    world.set(after);
    QTEST(log, "log");
    QCOMPARE(world.rows(), after);
    QCOMPARE(counted.count(), before.size() == after.size() ? 0 : 1);
    QCOMPARE(matched.count(), counted.count());
    QCOMPARE(world.scheduler.pendingBackgroundWork(), 0);
}

void LocalM3UListModelTest::showsTheLibraryOnceItIsThere()
{
    World world;
    world.set(u"abc"_s);
    world.store.persist();
    world.scheduler.runBackground();

    LocalM3UStore store(world.defaults, world.scheduler);
    LocalM3UListModel model(store, world.scheduler);
    const QAbstractItemModelTester tester(&model);
    QSignalSpy loaded(&model, &LocalM3UListModel::isLoadingChanged);
    QVERIFY(model.isLoading());
    QCOMPARE(model.count(), 0);
    model.setFilterText(u"c"_s);
    QVERIFY(model.isSearching());
    QCOMPARE(model.rowCount(), 0);
    world.scheduler.runBackground();
    QCOMPARE(loaded.count(), 1);
    QVERIFY(!model.isLoading() && !model.isSearching());
    QCOMPARE(model.count(), 3);
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.idAt(model.selectedRow()), store.entries().id(2));
}

void LocalM3UListModelTest::searches()
{
    World world;
    QList<PlaylistEntry> entries = links(u"abc"_s);
    entries[0].name = u"Kanal İ"_s;
    entries[1].groupTitle = u"KANÄLE"_s;
    entries[2].name = u"other"_s;
    world.store.setEntries(PlaylistEntries::fromList(entries));
    world.search(u" kAn "_s);
    QCOMPARE(world.model.filterText(), u"kAn"_s);
    QCOMPARE(world.rows(), u"Kanal İb"_s);
    QCOMPARE(world.model.matchCount(), 2);
    QCOMPARE(world.model.count(), 3);
    world.model.setFilterText(u"ther"_s);
    QCOMPARE(world.rows(), u"other"_s);
    world.search(u"nowhere"_s);
    QCOMPARE(world.rows(), QString());
    world.search(QString());
    QCOMPARE(world.model.rowCount(), 3);
}

void LocalM3UListModelTest::changesReachASearch()
{
    World world;
    world.set(u"abab"_s);
    world.search(u"a"_s);
    QCOMPARE(world.rows(), u"aa"_s);
    world.set(u"cabba"_s);
    world.set(u"aaa"_s);
    // Until the search is done again, what was found stays.
    QCOMPARE(world.rows(), u"aa"_s);
    QCOMPARE(world.model.count(), 3);
    world.scheduler.runBackground();
    QCOMPARE(world.rows(), u"aaa"_s);
}

void LocalM3UListModelTest::newestSearchWins()
{
    World world;
    world.set(u"ab"_s);
    world.model.setFilterText(u"a"_s);
    world.model.setFilterText(u"b"_s);
    QCOMPARE(world.rows(), u"ab"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.rows(), u"b"_s);

    world.set(u"abb"_s);
    world.model.setFilterText(QString());
    QCOMPARE(world.rows(), u"abb"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.rows(), u"abb"_s);
}

void LocalM3UListModelTest::selectionFollowsItsLink_data()
{
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("selected");
    QTest::newRow("another above it") << u"xabcd"_s << u"b"_s;
    QTest::newRow("moved to the top") << u"bacd"_s << u"b"_s;
    QTest::newRow("gone") << u"acd"_s << u"c"_s;
    QTest::newRow("it and all below gone") << u"a"_s << u"a"_s;
    QTest::newRow("all gone") << QString() << QString();
    QTest::newRow("replaced") << u"xyz"_s << u"y"_s;
}

void LocalM3UListModelTest::selectionFollowsItsLink()
{
    QFETCH(const QString, after);
    World world;
    world.set(u"abcd"_s);
    world.model.selectRow(1);
    world.set(after);
    QTEST(world.selected(), "selected");
}

void LocalM3UListModelTest::selectionMoves()
{
    World world;
    world.model.moveSelection(1);
    QCOMPARE(world.model.selectedRow(), -1);
    world.set(u"abc"_s);
    QCOMPARE(world.selected(), QString());
    QString visited;
    for (const int by : {1, 1, 1000, 1, -1, -1000, -1, 2}) {
        world.model.moveSelection(by);
        visited += world.selected();
    }
    QCOMPARE(visited, u"abccbaac"_s);
    world.model.selectRow(7);
    world.model.moveSelection(-1);
    QCOMPARE(world.selected(), u"c"_s);
    world.search(u"b"_s);
    QCOMPARE(world.selected(), u"b"_s);
    world.model.select(world.store.entries().id(0));
    QCOMPARE(world.selected(), u"b"_s);
    world.search(QString());
    world.model.select(world.store.entries().id(0));
    QCOMPARE(world.selected(), u"a"_s);
}

void LocalM3UListModelTest::newSearchSelectsItsFirstMatch()
{
    World world;
    QList<PlaylistEntry> entries = links(u"abc"_s);
    for (PlaylistEntry &entry : entries)
        entry.groupTitle = u"kanal"_s;
    world.store.setEntries(PlaylistEntries::fromList(entries));
    world.model.selectRow(2);
    world.model.setFilterText(u"k"_s);
    QVERIFY(world.model.isSearching());
    world.scheduler.runBackground();
    QVERIFY(!world.model.isSearching());
    QCOMPARE(world.selected(), u"a"_s);
    world.model.selectRow(1);
    world.model.setFilterText(u"ka"_s);
    QCOMPARE(world.selected(), u"a"_s);
    // The same search after a change of the library is no new one.
    world.model.selectRow(1);
    world.store.save(QUrl(u"http://h/kan"_s), u"kan"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.selected(), u"b"_s);
    world.model.setFilterText(u"nothing"_s);
    QCOMPARE(world.model.selectedRow(), -1);
}

void LocalM3UListModelTest::showsValues()
{
    World world;
    PlaylistEntry entry = links(u"a"_s).first();
    entry.name = u"»élan«\nTV"_s;
    entry.groupTitle = u"G\t1"_s;
    entry.countryCode = u"TR"_s;
    world.store.setEntries(PlaylistEntries::fromList({entry}));
    QCOMPARE(world.value(0, LocalM3UListModel::NameRole), u"»élan« TV"_s);
    QCOMPARE(world.value(0, LocalM3UListModel::GroupRole), u"G 1"_s);
    QCOMPARE(world.value(0, LocalM3UListModel::CountryRole), u"TR"_s);
    QCOMPARE(world.value(0, LocalM3UListModel::InitialRole), u"É"_s);
    QCOMPARE(world.value(0, LocalM3UListModel::LogoRole), QString());
}

void LocalM3UListModelTest::showsOnlyHarmlessLogos_data()
{
    QTest::addColumn<QString>("logo");
    QTest::addColumn<bool>("shown");
    QTest::newRow("web") << u"https://l/a.png"_s << true;
    QTest::newRow("file") << QUrl::fromLocalFile(QCoreApplication::applicationDirPath()
                                                 + u"/CTestTestfile.cmake")
                                 .toString()
                          << true;
    QTest::newRow("device") << u"file:///dev/zero"_s << false;
    QTest::newRow("kernel") << u"file:///proc/kmsg"_s << false;
    QTest::newRow("folder") << u"file:///tmp"_s << false;
    QTest::newRow("gone") << u"file:///nowhere/a.png"_s << false;
    QTest::newRow("another machine's") << u"file://host/tmp/a.png"_s << false;
    QTest::newRow("large")
        << QUrl::fromLocalFile(QCoreApplication::applicationFilePath()).toString() << false;
    QTest::newRow("no place") << u"a.png"_s << false;
    QTest::newRow("program's own") << u"qrc:/a.png"_s << false;
    QTest::newRow("image provider's") << u"image://x/a"_s << false;
}

void LocalM3UListModelTest::showsOnlyHarmlessLogos()
{
    QFETCH(const QString, logo);
    QFETCH(const bool, shown);
    World world;
    PlaylistEntry entry = links(u"a"_s).first();
    entry.logoURL = QUrl(logo);
    world.store.setEntries(PlaylistEntries::fromList({entry}));
    QCOMPARE(world.value(0, LocalM3UListModel::LogoRole).toString(), shown ? logo : QString());
}

void LocalM3UListModelTest::marksWhatPlays()
{
    World world;
    world.set(u"abb"_s);
    const auto marks = [&world] {
        QString text;
        for (int row = 0; row < 3; ++row)
            text += world.value(row, LocalM3UListModel::CurrentRole).toBool() ? u'x' : u'-';
        return text;
    };
    QCOMPARE(marks(), u"---"_s);
    QSignalSpy changed(&world.model, &QAbstractItemModel::dataChanged);
    world.model.setCurrentURL(QUrl(u"http://h/b"_s));
    world.model.setCurrentURL(QUrl(u"http://h/b"_s));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(marks(), u"-xx"_s);
    world.model.setCurrentURL(QUrl());
    QCOMPARE(marks(), u"---"_s);
}

QTEST_GUILESS_MAIN(LocalM3UListModelTest)
#include "tst_localm3ulistmodel.moc"
