#include "finder/SnifferSavedWebsiteStore.h"
#include "finder/WebListFile.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString key = u"Lumaro.M3U8Sniffer.SavedWebsites"_s;
const QDateTime start(QDate(2026, 1, 2), QTime(3, 4), QTimeZone::utc());

/// A store, what it is stored in, and the time.
struct World
{
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    FakeFilePanels panels;
    QDateTime now = start;
    std::unique_ptr<SnifferSavedWebsiteStore> store;

    World() { open(); }
    void open()
    {
        store.reset();
        store = std::make_unique<SnifferSavedWebsiteStore>(defaults, scheduler, panels,
                                                           [this] { return now; });
    }
    const SnifferSavedWebsite &at(qsizetype index) const { return store->websites()[index]; }
    qsizetype count() const { return store->websites().size(); }
    void visit(const QString &address, const QString &title = {})
    {
        now = now.addSecs(1);
        store->recordVisit(address, title);
    }
    QStringList addresses() const
    {
        QStringList list;
        for (const SnifferSavedWebsite &website : store->websites())
            list.append(website.urlString);
        return list;
    }
};

SnifferSavedWebsite website(const QString &address, const QString &title, int minutes,
                            qint64 visits, bool favorite)
{
    return {QUuid::createUuid(), address, title, start.addSecs(minutes * 60), visits, favorite};
}

} // namespace

class SnifferSavedWebsiteStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void normalizesAddresses_data();
    void normalizesAddresses();
    void recognisesTheSamePage_data();
    void recognisesTheSamePage();
    void recordsVisits();
    void savesWhatIsThere_data();
    void savesWhatIsThere();
    void togglesFavorites();
    void trimsHistoryOnly();
    void visitsOutlastAWrongClock();
    void removes();
    void displaysTitles_data();
    void displaysTitles();
    void boundsTitles();
    void persists();
    void writesTheFormat();
    void setsUnreadableDataAside_data();
    void setsUnreadableDataAside();
    void doesNotOverwriteWhatCouldNotBeSetAside();
    void merges_data();
    void merges();
    void visitDuringAMergeIsKept();
    void visitsDoNotHoldUpAMerge();
    void importsLongLists();
    void importOfTheExportChangesNothing();
    void importsWhatItCan();
    void failedImportChangesNothing_data();
    void failedImportChangesNothing();
    void failedExportIsLogged();
    void endsDuringAnImport();
};

void SnifferSavedWebsiteStoreTest::normalizesAddresses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address"); // empty: refused
    QTest::newRow("no scheme") << u" example.com/\n"_s << u"https://example.com"_s;
    QTest::newRow("root") << u"http://example.com/"_s << u"http://example.com"_s;
    QTest::newRow("root with a query") << u"example.com/?a"_s << u"https://example.com/?a"_s;
    QTest::newRow("root with a fragment") << u"example.com/#a"_s << u"https://example.com/#a"_s;
    QTest::newRow("two slashes") << u"example.com//"_s << u"https://example.com//"_s;
    QTest::newRow("path keeps its slash") << u"example.com/a/"_s << u"https://example.com/a/"_s;
    QTest::newRow("port") << u"localhost:8080/"_s << u"https://localhost:8080"_s;
    QTest::newRow("upper-case scheme") << u"HTTP://example.com/A"_s << u"http://example.com/A"_s;
    QTest::newRow("space in the path") << u"example.com/a b"_s << u"https://example.com/a%20b"_s;
    QTest::newRow("non-ASCII") << u"bücher.example/ü"_s
                               << u"https://xn--bcher-kva.example/%C3%BC"_s;
    QTest::newRow("address in the query")
        << u"example.com/?u=http://b"_s << QString(); // taken as the scheme "example.com/?u=http"
    QTest::newRow("ftp") << u"ftp://example.com/"_s << QString();
    QTest::newRow("file") << u"file:///etc/passwd"_s << QString();
    QTest::newRow("script") << u"javascript:alert(1)"_s << QString();
    QTest::newRow("blank page") << u"about:blank"_s << QString();
    QTest::newRow("no host") << u"https://"_s << QString();
    QTest::newRow("space in the host") << u"exam ple.com"_s << QString();
    QTest::newRow("spaces") << u" \n"_s << QString();
    QTest::newRow("endless") << u"example.com/"_s + QString(20000, u'a') << QString();
}

void SnifferSavedWebsiteStoreTest::normalizesAddresses()
{
    QFETCH(const QString, text);
    QFETCH(const QString, address);
    World world;
    world.store->save(text, u"T"_s, true);
    QCOMPARE(world.addresses(), address.isEmpty() ? QStringList() : QStringList{address});
    world.store->removeAll(false);
    world.visit(text);
    QCOMPARE(world.addresses(), address.isEmpty() ? QStringList() : QStringList{address});
    QCOMPARE(world.store->isFavorite(text), false);
}

void SnifferSavedWebsiteStoreTest::recognisesTheSamePage_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<bool>("same");
    QTest::newRow("www and case") << u"example.com"_s << u"https://WWW.Example.COM/"_s << true;
    QTest::newRow("www was saved") << u"www.example.com/a"_s << u"example.com/a"_s << true;
    QTest::newRow("www once") << u"www.www.example.com"_s << u"example.com"_s << false;
    QTest::newRow("scheme") << u"http://example.com"_s << u"https://example.com"_s << false;
    QTest::newRow("case of the path") << u"example.com/A"_s << u"example.com/a"_s << false;
    QTest::newRow("slash of a path") << u"example.com/a/"_s << u"example.com/a"_s << false;
    QTest::newRow("fragment") << u"example.com/a"_s << u"example.com/a#b"_s << false;
    QTest::newRow("subdomain") << u"example.com"_s << u"m.example.com"_s << false;
    QTest::newRow("port") << u"example.com"_s << u"example.com:444"_s << false;
    QTest::newRow("nothing but www") << u"www./"_s << u"www."_s << true;
}

void SnifferSavedWebsiteStoreTest::recognisesTheSamePage()
{
    QFETCH(const QString, saved);
    QFETCH(const QString, asked);
    QFETCH(const bool, same);
    World world;
    world.store->save(saved, u"T"_s, true);
    QCOMPARE(world.store->isFavorite(asked), same);
    world.visit(asked);
    QCOMPARE(world.count(), same ? 1 : 2);
    QVERIFY(world.store->isFavorite(saved));
}

void SnifferSavedWebsiteStoreTest::recordsVisits()
{
    World world;
    QSignalSpy changes(world.store.get(), &SnifferSavedWebsiteStore::websitesChanged);
    world.visit(u"https://a.example/x"_s, u"  A \n"_s);
    world.visit(u"https://b.example"_s);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(world.at(1),
             (SnifferSavedWebsite{world.at(1).id, u"https://a.example/x"_s, u"A"_s,
                                  start.addSecs(1), 1, false}));
    QCOMPARE(world.at(0).title, u"b.example"_s);

    const QUuid id = world.at(1).id;
    world.store->toggleFavorite(id);
    world.visit(u"https://www.a.example/x"_s, u"A again"_s);
    QCOMPARE(world.at(0),
             (SnifferSavedWebsite{id, u"https://a.example/x"_s, u"A again"_s, start.addSecs(3), 2,
                                  true}));
    QCOMPARE(world.at(1).urlString, u"https://b.example"_s);

    // A title that is only the address says nothing.
    world.visit(u"https://a.example/x"_s, u"https://a.example/x"_s);
    QCOMPARE(world.at(0).title, u"A again"_s);
    world.visit(u"https://www.a.example/x"_s, u"https://www.a.example/x"_s);
    QCOMPARE(world.at(0).title, u"A again"_s);
    QCOMPARE(world.at(0).visitCount, 4);
}

void SnifferSavedWebsiteStoreTest::savesWhatIsThere_data()
{
    QTest::addColumn<bool>("wasFavorite");
    QTest::addColumn<bool>("asFavorite");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("newTitle");
    QTest::addColumn<bool>("isFavorite");
    QTest::newRow("history becomes favourite") << false << true << u" New "_s << u"New"_s << true;
    QTest::newRow("favourite stays one") << true << false << u"New"_s << u"New"_s << true;
    QTest::newRow("empty title") << true << true << u" "_s << u"Old"_s << true;
    QTest::newRow("title is the address")
        << false << false << u"https://a.example"_s << u"Old"_s << false;
}

void SnifferSavedWebsiteStoreTest::savesWhatIsThere()
{
    QFETCH(const bool, wasFavorite);
    QFETCH(const bool, asFavorite);
    QFETCH(const QString, title);
    World world;
    world.visit(u"a.example"_s, u"Old"_s);
    if (wasFavorite)
        world.store->toggleFavorite(world.at(0).id);
    world.visit(u"b.example"_s);
    const QUuid id = world.at(1).id;
    world.now = start.addDays(1);
    world.store->save(u"www.a.example"_s, title, asFavorite);
    QCOMPARE(world.count(), 2);
    QCOMPARE(world.at(0).id, id);
    QCOMPARE(world.at(0).visitCount, 1);
    QCOMPARE(world.at(0).savedAt, world.now);
    QTEST(world.at(0).title, "newTitle");
    QTEST(world.at(0).isFavorite, "isFavorite");
}

void SnifferSavedWebsiteStoreTest::togglesFavorites()
{
    World world;
    world.store->toggleFavorite(u"a.example"_s, u"A"_s);
    QVERIFY(world.store->isFavorite(u"https://a.example/"_s));
    QCOMPARE(world.at(0).title, u"A"_s);
    world.visit(u"b.example"_s, u"B"_s);
    world.store->toggleFavorite(u"b.example"_s, {});
    QVERIFY(world.at(0).isFavorite);
    QCOMPARE(world.at(0).title, u"B"_s);

    world.store->toggleFavorite(u"www.a.example"_s, u"A"_s);
    QVERIFY(!world.store->isFavorite(u"a.example"_s));
    QCOMPARE(world.count(), 2);
    world.store->toggleFavorite(world.at(1).id);
    QVERIFY(world.store->isFavorite(u"a.example"_s));
    QSignalSpy changes(world.store.get(), &SnifferSavedWebsiteStore::websitesChanged);
    world.store->toggleFavorite(QUuid::createUuid());
    world.store->toggleFavorite(u"ftp://a.example"_s, u"A"_s);
    QCOMPARE(changes.size(), 0);
}

void SnifferSavedWebsiteStoreTest::trimsHistoryOnly()
{
    World world;
    for (int i = 0; i < 150; ++i) {
        world.now = world.now.addSecs(1);
        world.store->save(u"fav%1.example"_s.arg(i), {}, true);
    }
    for (int i = 0; i < 100; ++i)
        world.visit(u"%1.example"_s.arg(i));
    QCOMPARE(world.count(), 250);
    world.visit(u"0.example"_s);
    QCOMPARE(world.count(), 250);
    world.visit(u"100.example"_s);
    QCOMPARE(world.count(), 250);
    QVERIFY(!world.addresses().contains(u"https://1.example"_s));
    QVERIFY(world.addresses().contains(u"https://0.example"_s));
    QVERIFY(world.store->isFavorite(u"fav0.example"_s));

    // The oldest favourite does not vanish when its star is taken away by mistake.
    world.store->toggleFavorite(u"fav0.example"_s, {});
    QVERIFY(world.addresses().contains(u"https://fav0.example"_s));
    world.visit(u"101.example"_s);
    QVERIFY(!world.addresses().contains(u"https://fav0.example"_s));
}

void SnifferSavedWebsiteStoreTest::visitsOutlastAWrongClock()
{
    World world;
    world.now = start.addYears(10);
    for (int i = 0; i < 100; ++i)
        world.visit(u"%1.example"_s.arg(i));
    world.now = start;
    world.open();
    world.visit(u"new.example"_s);
    QCOMPARE(world.count(), 100);
    QCOMPARE(world.at(0).urlString, u"https://new.example"_s);
    QVERIFY(!world.addresses().contains(u"https://0.example"_s));
}

void SnifferSavedWebsiteStoreTest::removes()
{
    World world;
    world.store->save(u"a.example"_s, {}, true);
    world.visit(u"b.example"_s);
    world.visit(u"c.example"_s);
    world.store->remove(world.at(0).id);
    QCOMPARE(world.addresses(), (QStringList{u"https://b.example"_s, u"https://a.example"_s}));
    world.store->removeAll(true);
    QCOMPARE(world.addresses(), QStringList{u"https://a.example"_s});
    QSignalSpy changes(world.store.get(), &SnifferSavedWebsiteStore::websitesChanged);
    world.store->removeAll(true);
    world.store->remove(QUuid::createUuid());
    QCOMPARE(changes.size(), 0);
    world.store->removeAll(false);
    QCOMPARE(world.count(), 0);
    world.store->save(u"a.example"_s, {}, true);
    QCOMPARE(world.count(), 1);
}

void SnifferSavedWebsiteStoreTest::displaysTitles_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("shown");
    const QString address = u"https://a.example/x"_s;
    QTest::newRow("title") << address << u" A\n"_s << u"A"_s;
    QTest::newRow("empty") << address << u" "_s << u"a.example"_s;
    QTest::newRow("the address") << address << address << u"a.example"_s;
    QTest::newRow("no host") << u"about:blank"_s << QString() << u"about:blank"_s;
}

void SnifferSavedWebsiteStoreTest::displaysTitles()
{
    QFETCH(const QString, address);
    QFETCH(const QString, title);
    QTEST(website(address, title, 0, 0, false).displayTitle(), "shown");
}

void SnifferSavedWebsiteStoreTest::boundsTitles()
{
    World world;
    world.visit(u"a.example"_s, QString(5000, u'x'));
    world.visit(u"a.example"_s, QString(6000, u'y'));
    QCOMPARE(world.at(0).title, QString(1000, u'y'));
    world.store->save(u"a.example"_s, QString(6000, u'z'), true);
    QCOMPARE(world.at(0).title, QString(1000, u'z'));
}

void SnifferSavedWebsiteStoreTest::persists()
{
    World world;
    world.store->save(u"a.example"_s, u"Ä \"quoted\" \U0001F600\\"_s, true);
    world.visit(u"b.example"_s);
    const auto before = world.store->websites();
    QCOMPARE(world.defaults.writes, 0);
    world.scheduler.runBackground();
    QVERIFY(world.defaults.writes > 0);
    world.open();
    QCOMPARE(world.store->websites(), before);

    // What was changed last is stored even when the application ends at once.
    world.store->toggleFavorite(world.at(0).id);
    world.open();
    QVERIFY(world.store->isFavorite(u"b.example"_s));
}

void SnifferSavedWebsiteStoreTest::writesTheFormat()
{
    const SnifferSavedWebsite site{QUuid(u"{0f0e0d0c-0b0a-4908-8706-050403020100}"_s),
                                   u"https://a.example"_s,
                                   u"\"A\""_s,
                                   QDateTime(QDate(2001, 1, 1), QTime(0, 1), QTimeZone::utc()),
                                   7,
                                   true};
    QCOMPARE(encodeWebsites({site}),
             QByteArray(R"([{"id":"0F0E0D0C-0B0A-4908-8706-050403020100",)"
                        R"("urlString":"https://a.example","title":"\"A\"","savedAt":60.000,)"
                        R"("visitCount":7,"isFavorite":true}])"));
    QCOMPARE(encodeWebsites({}), QByteArray("[]"));
}

void SnifferSavedWebsiteStoreTest::setsUnreadableDataAside_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("not JSON") << QByteArray("[{");
    QTest::newRow("not an array") << QByteArray("{}");
    QTest::newRow("incomplete") << QByteArray(R"([{"id":"x"}])");
    QTest::newRow("binary") << QByteArray("\xff\x00\x01", 3);
}

void SnifferSavedWebsiteStoreTest::setsUnreadableDataAside()
{
    QFETCH(const QByteArray, data);
    World world;
    world.defaults.values.insert(key, data);
    world.open();
    QCOMPARE(world.count(), 0);
    QCOMPARE(world.defaults.setAsideValues, QList{data});
    world.visit(u"a.example"_s);
    world.open();
    QCOMPARE(world.count(), 1);
}

void SnifferSavedWebsiteStoreTest::doesNotOverwriteWhatCouldNotBeSetAside()
{
    World world;
    world.defaults.values.insert(key, "rescue me");
    world.defaults.failure = UserDefaultsError{UserDefaultsError::Kind::NotPermitted};
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"set unreadable websites aside"_s));
    world.open();
    world.defaults.failure.reset();
    world.visit(u"a.example"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.count(), 1);
    QCOMPARE(world.defaults.data(key), "rescue me");
}

void SnifferSavedWebsiteStoreTest::merges_data()
{
    QTest::addColumn<SnifferSavedWebsite>("own");
    QTest::addColumn<SnifferSavedWebsite>("imported");
    QTest::addColumn<SnifferSavedWebsite>("result"); // its identifier is that of `own`
    const QString a = u"https://a.example"_s;
    const QString wwwA = u"https://www.a.example"_s;
    QTest::newRow("newer import") << website(a, u"Old"_s, 1, 5, true)
                                  << website(wwwA, u"New"_s, 2, 3, false)
                                  << website(a, u"New"_s, 2, 5, true);
    QTest::newRow("older import") << website(a, u"Own"_s, 2, 1, false)
                                  << website(a, u"Older"_s, 1, 9, true)
                                  << website(a, u"Own"_s, 2, 9, true);
    QTest::newRow("newer import without a title")
        << website(a, u"Own"_s, 1, 1, false) << website(a, u" "_s, 2, 1, false)
        << website(a, u"Own"_s, 2, 1, false);
    QTest::newRow("older import knows the title")
        << website(a, a, 2, 1, false) << website(a, u"Title"_s, 1, 1, false)
        << website(a, u"Title"_s, 2, 1, false);
}

void SnifferSavedWebsiteStoreTest::merges()
{
    QFETCH(const SnifferSavedWebsite, own);
    QFETCH(const SnifferSavedWebsite, imported);
    QFETCH(SnifferSavedWebsite, result);
    World world;
    world.now = start.addDays(1);
    world.defaults.values.insert(key, encodeWebsites({own}));
    world.open();
    world.store->mergeImportedWebsites(WebList({imported}));
    world.scheduler.runBackground();
    result.id = own.id;
    QCOMPARE(world.store->websites(), QList{result});
    // Once more, and from the other side, makes no difference.
    world.store->mergeImportedWebsites(WebList({imported}));
    world.scheduler.runBackground();
    QCOMPARE(world.store->websites(), QList{result});
}

void SnifferSavedWebsiteStoreTest::visitDuringAMergeIsKept()
{
    World world;
    world.visit(u"own.example"_s);
    world.store->mergeImportedWebsites(
        WebList({website(u"https://imported.example"_s, u"I"_s, -1, 1, true)}));
    world.visit(u"new.example"_s);
    world.scheduler.runBackground();
    QCOMPARE(world.addresses(),
             (QStringList{u"https://new.example"_s, u"https://own.example"_s,
                          u"https://imported.example"_s}));
}

void SnifferSavedWebsiteStoreTest::visitsDoNotHoldUpAMerge()
{
    constexpr int plenty = 20;
    World world;
    world.store->mergeImportedWebsites(
        WebList({website(u"https://imported.example"_s, u"I"_s, -1, 1, true)}));
    int visits = 0;
    const std::function<void()> visitAgain = [&] {
        world.visit(u"%1.example"_s.arg(visits));
        if (!world.addresses().contains(u"https://imported.example"_s) && ++visits < plenty)
            world.scheduler.runInBackground([] { }, visitAgain);
    };
    visitAgain();
    world.scheduler.runBackground();
    QVERIFY(visits < plenty);
}

void SnifferSavedWebsiteStoreTest::importsLongLists()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"list.json"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    // Each page is there twice, every record with the same id, one in a thousand a favourite.
    constexpr int pages = 50'000;
    QByteArray text = "[";
    for (int i = 0; i < 2 * pages; ++i) {
        const QByteArray number = QByteArray::number(i % pages);
        text += (i == 0 ? "" : ",");
        text += R"({"id":"9b2d6b4e-5f0e-4c5f-9c55-0a1b2c3d4e5f","urlString":"https://)" + number
            + R"(.example","title":"","savedAt":)" + number + R"(,"visitCount":1,"isFavorite":)"
            + (i % 1000 == 0 ? "true}" : "false}");
    }
    file.write(text + ']');
    file.close();
    World world;
    world.visit(u"own.example"_s);
    world.panels.choice = QUrl::fromLocalFile(file.fileName());
    world.store->importWebsites();
    world.scheduler.runBackground();
    // Its 50 favourites, and the newest of its history next to our own.
    QCOMPARE(world.count(), 50 + WebList::maximumHistory);
    QCOMPARE(world.at(0).urlString, u"https://own.example"_s);
    QCOMPARE(world.at(1).urlString, u"https://49999.example"_s);
    QSet<QUuid> ids;
    for (const SnifferSavedWebsite &website : world.store->websites())
        ids.insert(website.id);
    QCOMPARE(ids.size(), world.count());

    // Ten times as many are too many to be the list of a person.
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[");
    const QByteArray records = text.sliced(1) + ',';
    for (int i = 0; i < 10; ++i)
        file.write(records);
    file.close();
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"Failed to import websites: The file is too large"_s));
    world.store->importWebsites();
    world.scheduler.runBackground();
    QCOMPARE(world.count(), 50 + WebList::maximumHistory);
}

void SnifferSavedWebsiteStoreTest::importOfTheExportChangesNothing()
{
    const QTemporaryDir folder;
    World world;
    world.store->save(u"fav.example"_s, u"Favourite"_s, true);
    for (int i = 0; i < 100; ++i)
        world.visit(u"%1.example/ä?q=\"x\""_s.arg(i), u"Ü\u2028 %1"_s.arg(i));
    world.panels.choice = QUrl::fromLocalFile(folder.filePath(u"list.json"_s));
    world.store->exportWebsites();
    world.scheduler.runBackground();
    QCOMPARE(world.panels.saveRequests.value(0).title, u"Export Web List"_s);
    QCOMPARE(world.panels.saveRequests.value(0).proposedName, u"VarnWebList.json"_s);

    const auto before = world.store->websites();
    world.store->importWebsites();
    world.scheduler.runBackground();
    QCOMPARE(world.panels.requests.value(0).title, u"Import Web List"_s);
    QCOMPARE(world.store->websites(), before);

    world.store->removeAll(false);
    world.store->importWebsites();
    world.scheduler.runBackground();
    QCOMPARE(world.store->websites(), before);
}

void SnifferSavedWebsiteStoreTest::importsWhatItCan()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"list.json"_s);
    World world;
    world.visit(u"own.example"_s, u"Own"_s);
    const QByteArray ownId = world.at(0).id.toByteArray(QUuid::WithoutBraces);
    QByteArray json = R"json([
        {"id":"OWN","urlString":"NEW.example/","title":"N","savedAt":"2026-01-01T00:00:00Z",
         "visitCount":-4,"isFavorite":true,"extra":{"a":[1]}},
        {"id":"9b2d6b4e-5f0e-4c5f-9c55-0a1b2c3d4e5f","urlString":"javascript:alert(1)",
         "title":"x","savedAt":0,"visitCount":1,"isFavorite":true},
        {"id":"9b2d6b4e-5f0e-4c5f-9c55-0a1b2c3d4e60","urlString":"https://future.example",
         "title":"F","savedAt":9e10,"visitCount":9007199254740991,"isFavorite":false}])json";
    json.replace("OWN", ownId);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(json);
    file.close();
    world.panels.choice = QUrl::fromLocalFile(path);
    world.store->importWebsites();
    world.scheduler.runBackground();
    QCOMPARE(world.addresses(),
             (QStringList{u"https://own.example"_s, u"https://future.example"_s,
                          u"https://new.example"_s}));
    // A time to come would keep it at the top for ever.
    QCOMPARE(world.at(1).savedAt, world.now);
    QCOMPARE(world.at(2).visitCount, 0);
    QCOMPARE(world.at(2).savedAt, QDateTime(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc()));
    QVERIFY(world.at(2).id != world.at(0).id);
    world.visit(u"future.example"_s);
    QCOMPARE(world.at(0).visitCount, 9007199254740992);
}

void SnifferSavedWebsiteStoreTest::failedImportChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    const auto with = [](const char *field, const QJsonValue &value) {
        QJsonObject object{{u"id"_s, u"9b2d6b4e-5f0e-4c5f-9c55-0a1b2c3d4e5f"_s},
                           {u"urlString"_s, u"https://a.example"_s},
                           {u"title"_s, u"A"_s},
                           {u"savedAt"_s, 5},
                           {u"visitCount"_s, 1},
                           {u"isFavorite"_s, true}};
        object.insert(QLatin1StringView(field), value);
        return QJsonDocument(QJsonArray{object}).toJson();
    };
    const QString none = u"The file is not a web list."_s;
    QTest::newRow("empty") << QByteArray() << none;
    QTest::newRow("object") << QByteArray("{}") << none;
    QTest::newRow("list of texts") << QByteArray("[\"https://a.example\"]") << none;
    QTest::newRow("deep") << QByteArray(100000, '[') << none;
    QTest::newRow("id") << with("id", u"7"_s) << none;
    QTest::newRow("address") << with("urlString", 7) << none;
    QTest::newRow("title") << with("title", QJsonValue()) << none;
    QTest::newRow("time as a word") << with("savedAt", u"yesterday"_s) << none;
    QTest::newRow("time beyond all bounds") << with("savedAt", 1e300) << none;
    QTest::newRow("time missing") << with("savedAt", QJsonValue::Undefined) << none;
    QTest::newRow("visits as text") << with("visitCount", u"3"_s) << none;
    QTest::newRow("half a visit") << with("visitCount", 1.5) << none;
    QTest::newRow("visits without number") << with("visitCount", 1e300) << none;
    QTest::newRow("favourite as a number") << with("isFavorite", 1) << none;
    QTest::newRow("too large") << QByteArray(maximumWebListSize + 1, ' ')
                               << u"The file is too large for a web list."_s;
}

void SnifferSavedWebsiteStoreTest::failedImportChangesNothing()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, message);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"list.json"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    World world;
    world.visit(u"own.example"_s);
    world.panels.choice = QUrl::fromLocalFile(path);
    QSignalSpy changes(world.store.get(), &SnifferSavedWebsiteStore::websitesChanged);
    QTest::ignoreMessage(
        QtWarningMsg,
        qPrintable(u"[SnifferSavedWebsiteStore] Failed to import websites: "_s + message));
    world.store->importWebsites();
    world.scheduler.runBackground();
    QCOMPARE(world.count(), 1);
    QCOMPARE(changes.size(), 0);
}

void SnifferSavedWebsiteStoreTest::failedExportIsLogged()
{
    World world;
    world.panels.choice = QUrl::fromLocalFile(u"/nonexistent/folder/list.json"_s);
    QTest::ignoreMessage(
        QtWarningMsg,
        QRegularExpression(u"^\\[SnifferSavedWebsiteStore\\] Failed to export websites: ."_s));
    world.store->exportWebsites();
    world.scheduler.runBackground();
}

void SnifferSavedWebsiteStoreTest::endsDuringAnImport()
{
    World world;
    world.panels.choice = QUrl::fromLocalFile(u"/nonexistent/folder/list.json"_s);
    world.store->importWebsites();
    world.store->exportWebsites();
    world.store.reset();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"Failed to export"_s));
    world.scheduler.runBackground();
}

QTEST_GUILESS_MAIN(SnifferSavedWebsiteStoreTest)
#include "tst_sniffersavedwebsitestore.moc"
