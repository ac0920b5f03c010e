#include "playlist/ChannelListModel.h"
#include "tests/fakes/FakeScheduler.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

PlaylistEntry channel(const QString &name, const QString &group = {}, const QString &logo = {})
{
    return {
        .id = QUuid::createUuid(),
        .name = name,
        .url = QUrl(u"http://h/x"_s),
        .logoURL = logo.isEmpty() ? std::nullopt : std::optional(QUrl(logo)),
        .groupTitle = group.isEmpty() ? std::nullopt : std::optional(group),
        .countryCode = {},
    };
}

struct World
{
    FakeScheduler scheduler;
    ChannelListModel model{scheduler};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::QtTest};

    explicit World(const QList<PlaylistEntry> &channels = {}) { show(channels); }

    void show(const QList<PlaylistEntry> &channels)
    {
        model.setEntries(PlaylistEntries::fromList(channels));
        scheduler.runBackground();
    }
    QVariant data(int row, int role) const { return model.data(model.index(row), role); }

    /// Headers in brackets with their number of channels, folded ones with a plus; the current
    /// channel with an asterisk.
    QStringList rows() const
    {
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            QString text = data(row, ChannelListModel::NameRole).toString();
            if (data(row, ChannelListModel::IsGroupRole).toBool())
                text = u"[%1%2 %3]"_s.arg(
                    data(row, ChannelListModel::CollapsedRole).toBool() ? u"+"_s : QString(), text,
                    data(row, ChannelListModel::CountRole).toString());
            if (data(row, ChannelListModel::CurrentRole).toBool())
                text += u'*';
            texts.append(text);
        }
        return texts;
    }
};

QList<PlaylistEntry> fewChannels()
{
    return {channel(u"One"_s, u"News"_s), channel(u"Kick"_s, u"Sport"_s), channel(u"Loose"_s),
            channel(u"Two"_s, u"News"_s), channel(u"Goal"_s, u"Sport"_s)};
}

const QStringList allRows{u"[News 2]"_s, u"One"_s,  u"Two"_s,       u"[Sport 2]"_s,
                          u"Kick"_s,     u"Goal"_s, u"[Other 1]"_s, u"Loose"_s};

} // namespace

class ChannelListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupsInOrderOfAppearance();
    void showsNoHeadersWithoutGroups();
    void isEmptyUntilPrepared();
    void showsOnlyLatestEntries();
    void mayGoWhilePreparing();
    void filters_data();
    void filters();
    void anotherListIsShownWhole();
    void announcesOnlyChanges();
    void foldsCategories();
    void refusesToFold();
    void searchesFoldedCategories();
    void forgetsFoldsWithTheList();
    void marksCurrentChannel();
    void marksHiddenChannel();
    void walksRows_data();
    void walksRows();
    void findsTheFirstChannel();
    void showsWebLogosOnly_data();
    void showsWebLogosOnly();
    void standsInForLogo_data();
    void standsInForLogo();
    void showsOneReadableLine_data();
    void showsOneReadableLine();
    void findsOutsideRows();
};

void ChannelListModelTest::groupsInOrderOfAppearance()
{
    const World world(fewChannels());
    QCOMPARE(world.rows(), allRows);
    QCOMPARE(world.model.count(), 5);
    QCOMPARE(world.model.matchCount(), 5);
    QCOMPARE(world.model.entryAt(0), -1);
    QCOMPARE(world.model.entryAt(2), 3);
    QCOMPARE(world.data(2, ChannelListModel::EntryRole), 3);
    QCOMPARE(world.data(2, ChannelListModel::GroupRole), u"News"_s);
    QCOMPARE(world.data(7, ChannelListModel::GroupRole), QString());
}

void ChannelListModelTest::showsNoHeadersWithoutGroups()
{
    const World world({channel(u"A"_s), channel(u"B"_s)});
    QCOMPARE(world.rows(), QStringList({u"A"_s, u"B"_s}));
}

void ChannelListModelTest::isEmptyUntilPrepared()
{
    World world(fewChannels());
    world.model.setCurrentEntry(1);
    const QSignalSpy counts(&world.model, &ChannelListModel::countChanged);
    const QSignalSpy currents(&world.model, &ChannelListModel::currentEntryChanged);
    world.model.setEntries(PlaylistEntries::fromList({channel(u"A"_s)}));
    QCOMPARE(world.rows(), QStringList());
    QCOMPARE(world.model.count(), 0);
    QCOMPARE(world.model.matchCount(), 0);
    QCOMPARE(world.model.currentEntry(), -1);
    QCOMPARE(currents.size(), 1);
    world.scheduler.runBackground();
    QCOMPARE(world.rows(), QStringList{u"A"_s});
    QCOMPARE(counts.size(), 2);

    world.show({});
    QCOMPARE(world.rows(), QStringList());
    QCOMPARE(world.model.count(), 0);
}

void ChannelListModelTest::showsOnlyLatestEntries()
{
    World world;
    world.model.setEntries(PlaylistEntries::fromList({channel(u"Old"_s)}));
    world.model.setEntries(PlaylistEntries::fromList({channel(u"New"_s)}));
    const QSignalSpy resets(&world.model, &QAbstractItemModel::modelReset);
    world.scheduler.runBackground();
    QCOMPARE(world.rows(), QStringList{u"New"_s});
    QCOMPARE(resets.size(), 1);
}

void ChannelListModelTest::mayGoWhilePreparing()
{
    FakeScheduler scheduler;
    auto model = std::make_unique<ChannelListModel>(scheduler);
    model->setEntries(PlaylistEntries::fromList(fewChannels()));
    model.reset();
    scheduler.runBackground();
    QCOMPARE(scheduler.pendingBackgroundWork(), 0);
}

void ChannelListModelTest::filters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("everything") << QString() << allRows;
    QTest::newRow("blanks only") << u" \t"_s << allRows;
    QTest::newRow("a name") << u"kick"_s << QStringList{u"[Sport 1]"_s, u"Kick"_s};
    QTest::newRow("blanks around") << u" KICK "_s << QStringList{u"[Sport 1]"_s, u"Kick"_s};
    QTest::newRow("several categories") << u"o"_s << allRows;
    QTest::newRow("a category") << u"sPoRT"_s << QStringList{u"[Sport 2]"_s, u"Kick"_s, u"Goal"_s};
    QTest::newRow("those without one") << u"other"_s << QStringList{u"[Other 1]"_s, u"Loose"_s};
    QTest::newRow("nothing") << u"xyz"_s << QStringList();
}

void ChannelListModelTest::filters()
{
    QFETCH(const QString, text);
    QFETCH(const QStringList, rows);
    World world(fewChannels());
    world.model.setFilterText(text);
    QCOMPARE(world.rows(), rows);
    QCOMPARE(world.model.matchCount(), rows.filter(QRegularExpression(u"^[^[]"_s)).size());
    QCOMPARE(world.model.count(), 5);
    QCOMPARE(world.model.filterText(), text.trimmed());
    world.model.setFilterText({});
    QCOMPARE(world.rows(), allRows);
}

void ChannelListModelTest::anotherListIsShownWhole()
{
    World world(fewChannels());
    world.model.setFilterText(u"goal"_s);
    const QSignalSpy filters(&world.model, &ChannelListModel::filterTextChanged);
    world.show(fewChannels());
    QCOMPARE(world.model.filterText(), QString());
    QCOMPARE(world.rows(), allRows);
    QCOMPARE(filters.size(), 1);

    // What is typed while it is being prepared is meant for it.
    world.model.setEntries(PlaylistEntries::fromList(fewChannels()));
    QCOMPARE(filters.size(), 1);
    world.model.setFilterText(u"one"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.rows(), QStringList({u"[News 1]"_s, u"One"_s}));
    QCOMPARE(world.model.matchCount(), 1);
}

void ChannelListModelTest::announcesOnlyChanges()
{
    World world(fewChannels());
    const QSignalSpy filters(&world.model, &ChannelListModel::filterTextChanged);
    const QSignalSpy matches(&world.model, &ChannelListModel::matchCountChanged);
    const QSignalSpy currents(&world.model, &ChannelListModel::currentEntryChanged);
    const QSignalSpy resets(&world.model, &QAbstractItemModel::modelReset);
    world.model.setFilterText(u"kick"_s);
    world.model.setFilterText(u" kick "_s);
    world.model.setFilterText(u"goal"_s);
    QCOMPARE(filters.size(), 2);
    QCOMPARE(resets.size(), 2);
    QCOMPARE(matches.size(), 1);
    world.model.setCurrentEntry(-1);
    QCOMPARE(currents.size(), 0);
}

void ChannelListModelTest::foldsCategories()
{
    World world(fewChannels());
    const QSignalSpy removed(&world.model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy inserted(&world.model, &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(&world.model, &QAbstractItemModel::dataChanged);
    world.model.toggleGroup(3);
    world.model.toggleGroup(0);
    QCOMPARE(world.rows(),
             QStringList({u"[+News 2]"_s, u"[+Sport 2]"_s, u"[Other 1]"_s, u"Loose"_s}));
    QCOMPARE(removed.size(), 2);
    QCOMPARE(removed[0].mid(1), QVariantList({4, 5}));
    QCOMPARE(removed[1].mid(1), QVariantList({1, 2}));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(world.model.matchCount(), 5);

    world.model.toggleGroup(1);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(inserted[0].mid(1), QVariantList({2, 3}));
    world.model.toggleGroup(0);
    QCOMPARE(world.rows(), allRows);

    world.model.toggleGroup(6);
    QCOMPARE(world.rows(), allRows.first(6) << u"[+Other 1]"_s);
    world.model.toggleGroup(6);
    QCOMPARE(world.rows(), allRows);
}

void ChannelListModelTest::refusesToFold()
{
    World world(fewChannels());
    for (const int row : {-1, 1, 8, std::numeric_limits<int>::max()})
        world.model.toggleGroup(row);
    QCOMPARE(world.rows(), allRows);
    world.model.setFilterText(u"kick"_s);
    world.model.toggleGroup(0);
    QCOMPARE(world.rows(), QStringList({u"[Sport 1]"_s, u"Kick"_s}));
}

void ChannelListModelTest::searchesFoldedCategories()
{
    World world(fewChannels());
    world.model.toggleGroup(3);
    world.model.setFilterText(u"kick"_s);
    QCOMPARE(world.rows(), QStringList({u"[Sport 1]"_s, u"Kick"_s}));
    world.model.setFilterText({});
    QCOMPARE(world.rows(), allRows.first(3) + QStringList{u"[+Sport 2]"_s} + allRows.sliced(6));
}

void ChannelListModelTest::forgetsFoldsWithTheList()
{
    World world(fewChannels());
    world.model.toggleGroup(3);
    world.show(fewChannels());
    QCOMPARE(world.rows(), allRows);
}

void ChannelListModelTest::marksCurrentChannel()
{
    World world(fewChannels());
    QSignalSpy changed(&world.model, &QAbstractItemModel::dataChanged);
    const auto changedRows = [&] {
        QList<int> rows;
        for (const QVariantList &signal :
             std::exchange(static_cast<QList<QVariantList> &>(changed), {}))
            rows.append(signal[0].toModelIndex().row());
        return rows;
    };
    world.model.setCurrentEntry(3);
    QCOMPARE(world.rows()[2], u"Two*"_s);
    QCOMPARE(changedRows(), QList{2});
    world.model.setCurrentEntry(0);
    QCOMPARE(world.rows().filter(u"*"_s), QStringList{u"One*"_s});
    QCOMPARE(changedRows(), QList({2, 1}));
    world.model.setCurrentEntry(-1);
    QCOMPARE(world.rows(), allRows);
    QCOMPARE(changedRows(), QList{1});
    world.model.setCurrentEntry(99);
    QCOMPARE(world.rows(), allRows);
    QCOMPARE(changedRows(), QList<int>());
}

void ChannelListModelTest::marksHiddenChannel()
{
    World world(fewChannels());
    world.model.toggleGroup(0);
    world.model.setCurrentEntry(3);
    QVERIFY(world.rows().filter(u"*"_s).isEmpty());
    world.model.toggleGroup(0);
    QCOMPARE(world.rows()[2], u"Two*"_s);
}

void ChannelListModelTest::walksRows_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("found");
    const int most = std::numeric_limits<int>::max();
    const int least = std::numeric_limits<int>::min();
    QTest::newRow("onto a header") << QString() << 2 << 1 << 3;
    QTest::newRow("off a header") << QString() << 3 << 1 << 4;
    QTest::newRow("up onto a header") << QString() << 4 << -1 << 3;
    QTest::newRow("begins at the top") << QString() << -1 << 1 << 0;
    QTest::newRow("begins at the bottom") << QString() << -1 << -1 << 7;
    QTest::newRow("a page") << QString() << 1 << 5 << 6;
    QTest::newRow("a page is too long") << QString() << 5 << 5 << 7;
    QTest::newRow("a page up is too long") << QString() << 3 << -5 << 0;
    QTest::newRow("to the end") << QString() << 3 << most << 7;
    QTest::newRow("to the beginning") << QString() << 3 << least << 0;
    QTest::newRow("stays at the end") << QString() << 7 << 1 << 7;
    QTest::newRow("outside") << QString() << most << most << 7;
    // Every name or category has an o.
    QTest::newRow("search: over a header") << u"o"_s << 2 << 1 << 4;
    QTest::newRow("search: up over a header") << u"o"_s << 4 << -1 << 2;
    QTest::newRow("search: begins at a channel") << u"o"_s << -1 << 1 << 1;
    QTest::newRow("search: the first stays") << u"o"_s << 1 << -1 << 1;
    QTest::newRow("search: to the beginning") << u"o"_s << 4 << least << 1;
    QTest::newRow("search: nothing") << u"x"_s << -1 << 1 << -1;
}

void ChannelListModelTest::walksRows()
{
    QFETCH(const QString, search);
    QFETCH(const int, row);
    QFETCH(const int, step);
    World world(fewChannels());
    world.model.setFilterText(search);
    QTEST(world.model.rowAfter(row, step), "found");
}

void ChannelListModelTest::findsTheFirstChannel()
{
    World world;
    QCOMPARE(world.model.firstChannelRow(), -1);
    world.show(fewChannels());
    QCOMPARE(world.model.firstChannelRow(), 1);
    world.model.toggleGroup(0);
    QCOMPARE(world.model.firstChannelRow(), 2);
    world.model.toggleGroup(1);
    world.model.toggleGroup(2);
    QCOMPARE(world.model.firstChannelRow(), -1);
}

void ChannelListModelTest::showsWebLogosOnly_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("shown");
    QTest::newRow("https") << u"https://l/a.png"_s << true;
    QTest::newRow("upper-case scheme") << u"HTTP://l/a.png"_s << true;
    QTest::newRow("file") << u"file:///etc/passwd"_s << false;
    QTest::newRow("resource") << u"qrc:/a.png"_s << false;
    QTest::newRow("data") << u"data:image/png;base64,AAAA"_s << false;
    QTest::newRow("relative") << u"a.png"_s << false;
    QTest::newRow("none") << QString() << false;
}

void ChannelListModelTest::showsWebLogosOnly()
{
    QFETCH(const QString, address);
    QFETCH(const bool, shown);
    const World world({channel(u"A"_s, {}, address)});
    QCOMPARE(world.data(0, ChannelListModel::LogoRole).toString(),
             shown ? QUrl(address).toString() : QString());
}

void ChannelListModelTest::standsInForLogo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("initial");
    QTest::newRow("letter") << u"news"_s << u"N"_s;
    QTest::newRow("digit after signs") << u"[| 3sat"_s << u"3"_s;
    QTest::newRow("not ASCII") << u"«ünal"_s << u"Ü"_s;
    QTest::newRow("supplementary plane") << u"\U0001F600\U00010428"_s << u"\U00010400"_s;
    QTest::newRow("no letter") << u"★ ★"_s << QString();
    QTest::newRow("empty") << QString() << QString();
}

void ChannelListModelTest::standsInForLogo()
{
    QFETCH(const QString, name);
    QTEST(World({channel(name)}).data(0, ChannelListModel::InitialRole).toString(), "initial");
}

void ChannelListModelTest::showsOneReadableLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << u"Télé 1"_s << u"Télé 1"_s;
    QTest::newRow("line ends and controls")
        << u"A\nB\r\u2028C\u0085D\tE\u0007"_s << u"A B  C D E "_s;
    QTest::newRow("endless") << QString(1'000'000, u'x') << QString(1000, u'x');
    QTest::newRow("endless, cut between characters")
        << u"a"_s + QString(1000, u'\u20ac') << u"a"_s + QString(333, u'\u20ac');
}

void ChannelListModelTest::showsOneReadableLine()
{
    QFETCH(const QString, text);
    const World world({channel(text, text)});
    for (const int row : {0, 1}) {
        QTEST(world.data(row, ChannelListModel::NameRole).toString(), "shown");
        QTEST(world.data(row, ChannelListModel::GroupRole).toString(), "shown");
    }
}

void ChannelListModelTest::findsOutsideRows()
{
    const World world(fewChannels());
    QCOMPARE(world.model.entryAt(-1), -1);
    QCOMPARE(world.model.entryAt(8), -1);
    QCOMPARE(world.model.rowCount(world.model.index(0)), 0);
}

QTEST_GUILESS_MAIN(ChannelListModelTest)
#include "tst_channellistmodel.moc"
