#include "playlist/PlaylistEntries.h"
#include "playlist/PlaylistEntryCoding.h"

#include <QTest>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

PlaylistEntry fullEntry()
{
    return {
        .id = QUuid(u"f81d4fae-7dec-11d0-a765-00a0c91e6bf6"_s),
        .name = u"News"_s,
        .url = QUrl(u"http://h/a.m3u8"_s),
        .logoURL = QUrl(u"http://l/a.png"_s),
        .groupTitle = u"Group"_s,
        .countryCode = u"DE"_s,
    };
}

PlaylistEntry bareEntry()
{
    PlaylistEntry entry = fullEntry();
    entry.logoURL.reset();
    entry.groupTitle.reset();
    entry.countryCode.reset();
    return entry;
}

} // namespace

class PlaylistEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodesInOrder();
    void restoresWhatWasEncoded_data();
    void restoresWhatWasEncoded();
    void decodes_data();
    void decodes();
    void keepsListsOfEntries();
    void comparesLists();
};

void PlaylistEntryTest::encodesInOrder()
{
    QCOMPARE(encodeEntries({}), "[]"_ba);
    const QByteArray bare = R"({"id":"F81D4FAE-7DEC-11D0-A765-00A0C91E6BF6","name":"News",)"
                            R"("url":"http://h/a.m3u8")";
    QCOMPARE(encodeEntries(PlaylistEntries::fromList({fullEntry(), bareEntry()})),
             '[' + bare + R"(,"logoURL":"http://l/a.png","groupTitle":"Group","countryCode":"DE"},)"
                 + bare + "}]");
}

void PlaylistEntryTest::restoresWhatWasEncoded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address");
    QTest::newRow("plain") << u"News"_s << u"http://h/a.m3u8"_s;
    QTest::newRow("JSON's own characters")
        << u"\"\\/\b\f\n\r\t\u0001,:{}[]"_s << u"http://h/a?x=[1]&y={}"_s;
    QTest::newRow("not ASCII") << u"Первый 🇫🇷 \u2028"_s << u"http://höst/ü%20?ä#ö"_s;
    QTest::newRow("like a byte-order mark") << u"\uFEFFNews"_s << u"http://h/a"_s;
    QTest::newRow("mark after an escape") << u"\"\uFEFFNews"_s << u"http://h/a"_s;
    QTest::newRow("space") << u" "_s << u"http://h/a b.ts"_s;
    QTest::newRow("escapes") << u"100%"_s << u"http://u%40:p%2F@h/%2F%25?%26=%3D"_s;
    QTest::newRow("no name, file") << QString() << u"file:///tmp/x y.ts"_s;
}

void PlaylistEntryTest::restoresWhatWasEncoded()
{
    QFETCH(const QString, name);
    QFETCH(const QString, address);
    PlaylistEntry entry = fullEntry();
    entry.name = name;
    entry.groupTitle = u"in " + name;
    entry.url = QUrl(address);
    entry.logoURL = QUrl(address);
    const QList<PlaylistEntry> entries{entry, bareEntry()};
    const auto decoded = decodeEntries(encodeEntries(PlaylistEntries::fromList(entries)));
    QVERIFY(decoded);
    QCOMPARE(decoded->toList(), entries);
}

void PlaylistEntryTest::decodes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("succeeds");
    const QByteArray id = R"("id":"F81D4FAE-7DEC-11D0-A765-00A0C91E6BF6")";
    const QByteArray name = R"("name":"A")";
    const QByteArray url = R"("url":"http://h/a")";
    const QByteArray bare = id + ',' + name + ',' + url;
    const auto row = [](const char *title, const QByteArray &object, bool succeeds) {
        QTest::newRow(title) << "[{" + object + "}]" << succeeds;
    };
    row("required keys", bare, true);
    row("other order, other keys", url + ',' + name + R"(,"x":[1,{}],)" + id, true);
    row("lower-case id", bare.toLower(), true);
    row("nil id", R"("id":"00000000-0000-0000-0000-000000000000",)" + name + ',' + url, true);
    row("optional keys that are null",
        bare + R"(,"logoURL":null,"groupTitle":null,"countryCode":null)", true);
    row("no id", name + ',' + url, false);
    row("no name", id + ',' + url, false);
    row("no url", id + ',' + name, false);
    row("null url", id + ',' + name + R"(,"url":null)", false);
    row("damaged id", R"("id":"F81D4FAE-7DEC-11D0-A765",)" + name + ',' + url, false);
    row("id in braces", R"("id":"{F81D4FAE-7DEC-11D0-A765-00A0C91E6BF6}",)" + name + ',' + url,
        false);
    row("number for a name", id + R"(,"name":1,)" + url, false);
    row("broken url", id + ',' + name + R"(,"url":"http://a b/")", false);
    row("empty url", id + ',' + name + R"(,"url":"")", false);
    row("broken logo", bare + R"(,"logoURL":"http://a b/")", false);
    row("number for a group", bare + R"(,"groupTitle":1)", false);
    row("list for a country", bare + R"(,"countryCode":["DE"])", false);
    row("second entry is damaged", bare + "},{" + id, false);
    QTest::newRow("empty list") << "[]"_ba << true;
    QTest::newRow("entry that is no object") << "[1]"_ba << false;
    QTest::newRow("no list") << "{" + bare + "}" << false;
    QTest::newRow("cut off") << "[{" + bare << false;
    QTest::newRow("no JSON") << "#EXTM3U"_ba << false;
    QTest::newRow("nothing") << ""_ba << false;
    QTest::newRow("too deep") << QByteArray(100'000, '[') << false;
}

void PlaylistEntryTest::decodes()
{
    QFETCH(const QByteArray, json);
    QTEST(decodeEntries(json).has_value(), "succeeds");
}

void PlaylistEntryTest::keepsListsOfEntries()
{
    PlaylistEntry other = fullEntry();
    other.name = u"Télé 🇫🇷"_s;
    other.url = QUrl(u"http://höst/ü%2F?x#y"_s);
    other.groupTitle = u"Ünï"_s;
    const QList<PlaylistEntry> list{fullEntry(), bareEntry(), other, fullEntry()};
    const PlaylistEntries entries = PlaylistEntries::fromList(list);
    QCOMPARE(entries.toList(), list);
    QCOMPARE(entries.groupCount(), 2);
    QCOMPARE(entries.groupTitle(entries.groupIndex(2)), u"Ünï"_s);
    QCOMPARE(entries.groupIndex(1), -1);
    QCOMPARE(entries.groupIndex(3), entries.groupIndex(0));
    QVERIFY(PlaylistEntries::fromList({}).isEmpty());
}

void PlaylistEntryTest::comparesLists()
{
    const auto two = PlaylistEntries::fromList({fullEntry(), bareEntry()});
    QCOMPARE(two, PlaylistEntries::fromList({fullEntry(), bareEntry()}));
    QVERIFY(two != PlaylistEntries::fromList({bareEntry(), fullEntry()}));
    QVERIFY(two != PlaylistEntries::fromList({fullEntry()}));
    QCOMPARE(PlaylistEntries(), PlaylistEntries::fromList({}));
}

QTEST_GUILESS_MAIN(PlaylistEntryTest)
#include "tst_playlistentry.moc"
