#include "playlist/AddressReader.h"
#include "playlist/PlaylistParser.h"
#include "playlist/UrlPath.h"

#include <QSet>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl base(u"http://host/p/list.m3u"_s);

QList<PlaylistEntry> entriesOf(const QByteArray &text)
{
    return PlaylistParser::parse(text, base).toList();
}

/// The only entry behind an #EXTINF line.
PlaylistEntry entryAfter(const QByteArray &extInf)
{
    return PlaylistParser::parse(extInf + "\nhttp://h/x.ts\n", base).at(0);
}

/// "name <address>", and of what else there is "logo=…", "group=…" and "country=…".
QString line(const PlaylistEntry &entry)
{
    QString text = entry.name + u" <"_s + entry.url.toString(QUrl::FullyEncoded) + u'>';
    if (entry.logoURL)
        text += u" logo="_s + entry.logoURL->toString(QUrl::FullyEncoded);
    if (entry.groupTitle)
        text += u" group="_s + *entry.groupTitle;
    if (entry.countryCode)
        text += u" country="_s + *entry.countryCode;
    return text;
}

QByteArray repeated(QByteArrayView part, qsizetype size)
{
    return part.toByteArray().repeated(size / part.size());
}

} // namespace

class PlaylistParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEntries_data();
    void readsEntries();
    void readsTitle_data();
    void readsTitle();
    void readsAttributes_data();
    void readsAttributes();
    void readsCountry_data();
    void readsCountry();
    void resolvesAddresses_data();
    void resolvesAddresses();
    void namesUntitledEntries_data();
    void namesUntitledEntries();
    void resolvesAgainstOtherBases_data();
    void resolvesAgainstOtherBases();
    void keepsManyHostsApart();
    void skipsTooLongAddress();
    void decodes_data();
    void decodes();
    void saysWhyPlaylistIsUseless();
    void givesFreshIdentities();
    void readsMillionEntries();
    void survivesHugeText_data();
    void survivesHugeText();
};

void PlaylistParserTest::readsEntries_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("entries");
    const QStringList two{u"A <http://h/a>"_s, u"B <http://h/b>"_s};
    QTest::newRow("line feeds")
        << "#EXTM3U\n#EXTINF:-1,A\nhttp://h/a\n#EXTINF:-1,B\nhttp://h/b\n"_ba << two;
    QTest::newRow("CR LF")
        << "#EXTM3U\r\n#EXTINF:-1,A\r\nhttp://h/a\r\n#EXTINF:-1,B\r\nhttp://h/b\r\n"_ba << two;
    QTest::newRow("carriage returns, no last one")
        << "#EXTM3U\r#EXTINF:-1,A\rhttp://h/a\r#EXTINF:-1,B\rhttp://h/b"_ba << two;
    QTest::newRow("every other line end")
        << "#EXTINF:-1,A\vhttp://h/a\f#EXTINF:-1,B\u0085http://h/b\u2028http://h/c\u2029http://h/d"_ba
        << two + QStringList{u"c <http://h/c>"_s, u"d <http://h/d>"_s};
    QTest::newRow("close to a line end")
        << "#EXTINF:-1,A\u00a9\u2026\nhttp://h/a"_ba << QStringList{u"A©… <http://h/a>"_s};
    QTest::newRow("blanks around lines") << " \t#EXTINF:-1,A \n\u00a0\u3000http://h/a\u2003 \n"_ba
                                         << QStringList{u"A <http://h/a>"_s};
    QTest::newRow("all values")
        << "#EXTINF:-1 tvg-id=\"x.de\" tvg-logo=\"http://l/a.png\" "
           "group-title=\"News\",A\nhttp://h/a"_ba
        << QStringList{u"A <http://h/a> logo=http://l/a.png group=News country=DE"_s};
    QTest::newRow("values reach one address only")
        << "#EXTINF:-1 group-title=\"G\",A\nhttp://h/a\nhttp://h/b"_ba
        << QStringList{u"A <http://h/a> group=G"_s, u"b <http://h/b>"_s};
    QTest::newRow("values survive comments, blank lines and what is no address")
        << "#EXTINF:-1 group-title=\"G\",A\n#EXTVLCOPT:x\n\n#extinf:-1,B\nhttp://a b/\nhttp://h/a"_ba
        << QStringList{u"A <http://h/a> group=G"_s};
    QTest::newRow("a second #EXTINF replaces all of the first")
        << "#EXTINF:-1 tvg-logo=\"http://l/a\" group-title=\"G\",A\n#EXTINF:-1,B\nhttp://h/b"_ba
        << QStringList{u"B <http://h/b>"_s};
    QTest::newRow("same entry twice")
        << "http://h/a\nhttp://h/a"_ba << QStringList{u"a <http://h/a>"_s, u"a <http://h/a>"_s};
    QTest::newRow("a NUL in a name")
        << QByteArray("#EXTINF:-1,A\0B\nhttp://h/a", 25) << QStringList{u"A\0B <http://h/a>"_s};
    QTest::newRow("#EXTINF at the end")
        << "http://h/a\n#EXTINF:-1,B"_ba << QStringList{u"a <http://h/a>"_s};
    QTest::newRow("nothing") << ""_ba << QStringList();
    QTest::newRow("blank lines") << "\n\r\n \t\u2028\u00a0"_ba << QStringList();
    QTest::newRow("comments") << "#EXTM3U\n#EXTINF:-1,A\n# http://h/a"_ba << QStringList();
}

void PlaylistParserTest::readsEntries()
{
    QFETCH(const QByteArray, text);
    QStringList lines;
    for (const PlaylistEntry &entry : entriesOf(text))
        lines.append(line(entry));
    QTEST(lines, "entries");
}

void PlaylistParserTest::readsTitle_data()
{
    QTest::addColumn<QByteArray>("extInf");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "#EXTINF:-1,Title"_ba << u"Title"_s;
    QTest::newRow("blanks") << "#EXTINF:-1, \tTitle"_ba << u"Title"_s;
    QTest::newRow("later commas belong to it") << "#EXTINF:-1,A, B,"_ba << u"A, B,"_s;
    QTest::newRow("two commas") << "#EXTINF:-1,,A"_ba << u",A"_s;
    QTest::newRow("comma in a value") << "#EXTINF:-1 tvg-name=\"A, B\" group-title=\"G\",Title"_ba
                                      << u"B\" group-title=\"G\",Title"_s;
    QTest::newRow("trailing comma")
        << "#EXTINF:-1 tvg-name=\"News\","_ba << u"#EXTINF:-1 tvg-name=\"News\""_s;
    QTest::newRow("blanks after a trailing comma")
        << "#EXTINF:-1 tvg-name=\"News\", \t"_ba << u"#EXTINF:-1 tvg-name=\"News\""_s;
    QTest::newRow("no comma") << "#EXTINF:-1 tvg-name=\"News\""_ba
                              << u"#EXTINF:-1 tvg-name=\"News\""_s;
    QTest::newRow("tag alone") << "#EXTINF:"_ba << u"#EXTINF:"_s;
    QTest::newRow("not ASCII") << "#EXTINF:-1,Télé Первый 🇫🇷"_ba << u"Télé Первый 🇫🇷"_s;
}

void PlaylistParserTest::readsTitle()
{
    QFETCH(const QByteArray, extInf);
    QTEST(entryAfter(extInf).name, "name");
}

void PlaylistParserTest::readsAttributes_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QString>("logo"); // empty: none
    QTest::addColumn<QString>("group"); // empty: none
    const QString logo = u"http://l/a.png"_s;
    QTest::newRow("upper case") << "TVG-LOGO=\"http://l/a.png\" Group-Title=\"G\""_ba << logo
                                << u"G"_s;
    QTest::newRow("no quotes") << "tvg-logo=http://l/a.png group-title=G"_ba << QString()
                               << QString();
    QTest::newRow("single quotes")
        << "tvg-logo='http://l/a.png' group-title='G'"_ba << QString() << QString();
    QTest::newRow("blank before the equals sign")
        << "group-title =\"G\""_ba << QString() << QString();
    QTest::newRow("blanks inside")
        << "tvg-logo=\" http://l/a.png \" group-title=\" \u00a0G \""_ba << logo << u"G"_s;
    QTest::newRow("empty") << "tvg-logo=\"\" group-title=\" \""_ba << QString() << QString();
    QTest::newRow("no closing quote") << "tvg-logo=\"http://l/a.png"_ba << QString() << QString();
    QTest::newRow("first counts") << "group-title=\"\" group-title=\"G\""_ba << QString()
                                  << QString();
    QTest::newRow("end of a longer name") << "xgroup-title=\"G\""_ba << QString() << u"G"_s;
    QTest::newRow("inside another value")
        << "tvg-name=\"group-title=\"G\" group-title=\"H\""_ba << QString() << u"G"_s;
    QTest::newRow("in the title") << "x=\"\",A group-title=\"G\""_ba << QString() << u"G"_s;
    QTest::newRow("no unescaping")
        << "group-title=\"A &amp; B\\\""_ba << QString() << u"A &amp; B\\"_s;
    QTest::newRow("relative logo stays so")
        << "tvg-logo=\"l/a.png\""_ba << u"l/a.png"_s << QString();
    QTest::newRow("logo with a space")
        << "tvg-logo=\"http://l/a b.png\""_ba << QString() << QString();
    QTest::newRow("logo not in ASCII")
        << "tvg-logo=\"http://l/ü.png\""_ba << u"http://l/%C3%BC.png"_s << QString();
}

void PlaylistParserTest::readsAttributes()
{
    QFETCH(const QByteArray, attributes);
    const PlaylistEntry entry = entryAfter("#EXTINF:-1 " + attributes);
    QTEST(entry.logoURL.value_or(QUrl()).toString(QUrl::FullyEncoded), "logo");
    QTEST(entry.groupTitle.value_or(QString()), "group");
}

void PlaylistParserTest::readsCountry_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QString>("code"); // empty: none
    const auto row = [](const char *attributes, const QString &code) {
        QTest::newRow(attributes) << QByteArray(attributes) << code;
    };
    row(R"(tvg-country="de")", u"DE"_s);
    row(R"(tvg-country="us;ca")", u"US"_s);
    row(R"(tvg-country=", ;fr,de")", u"FR"_s);
    row(R"(tvg-country="USA")", {});
    row(R"(tvg-country="u")", {});
    row(R"(tvg-country=";")", {});
    row(R"(tvg-country="usa;de")", {});
    row(R"(tvg-country="usa" tvg-id="x.fr")", u"FR"_s);
    row(R"(tvg-country="usa" country="de")", {});
    row(R"(country="de")", u"DE"_s);
    row(R"(tvg-country="" country="de")", u"DE"_s);
    row(R"(country="de" tvg-country="")", u"DE"_s);
    row(R"(country="de" tvg-country="fr")", u"FR"_s);
    row(R"(tvg-id="CNN.us@SD")", u"US"_s);
    row(R"(tvg-id="BBCOne.uk")", u"UK"_s);
    row(R"(tvg-id="Channel5")", {});
    row(R"(tvg-id="x.fr.")", u"FR"_s);
    row(R"(tvg-id="x.fr@a@b.de")", u"FR"_s);
    row(R"(tvg-id="@HD")", u"HD"_s);
    row(R"(tvg-id="@")", {});
    row(R"(tvg-id="@@")", u"@@"_s);
    row(R"(tvg-id="...")", {});
    row(R"(tvg-id="x.ß")", u"SS"_s);
    row(R"(tvg-id="x.öé")", u"ÖÉ"_s);
    row(R"(tvg-id="x.ö")", {});
    row("tvg-id=\"x.a\u0308b\u0301\"", u"A\u0308B\u0301"_s);
    row(R"(tvg-country="🇩🇪")", {});
    row(R"(tvg-country="🇩🇪🇫🇷")", u"🇩🇪🇫🇷"_s);
}

void PlaylistParserTest::readsCountry()
{
    QFETCH(const QByteArray, attributes);
    QTEST(entryAfter("#EXTINF:-1 " + attributes).countryCode.value_or(QString()), "code");
}

void PlaylistParserTest::resolvesAddresses_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QString>("url"); // empty: no address
    const auto row = [](const char *address, const QString &url) {
        QTest::newRow(address) << QByteArray(address) << url;
    };
    const auto stays = [&](const char *address) { row(address, QString::fromUtf8(address)); };
    stays("http://h");
    stays("http://h/");
    stays("https://user:pass@h:8443/live/a%20b.ts?x=1&y=%2F;z#t=3");
    stays("http://h/a/../b//c/./d");
    stays("http://h?x=http://g/?y");
    stays("http://[::1]:8080/a");
    stays("rtmp://h/app/stream");
    stays("udp://@239.0.0.1:1234");
    stays("file:///tmp/a.ts");
    row("HTTP://H/A", u"http://h/A"_s);
    row("http://h/\u00fc", u"http://h/%C3%BC"_s);
    row("http://h\u00f6st/", u"http://xn--hst-sna/"_s);
    row("a/b.m3u8", u"http://host/p/a/b.m3u8"_s);
    row("../b.ts", u"http://host/b.ts"_s);
    row("../../../b.ts", u"http://host/b.ts"_s);
    row("/b.ts", u"http://host/b.ts"_s);
    row("//other/b.ts", u"http://other/b.ts"_s);
    row("?x=1", u"http://host/p/list.m3u?x=1"_s);
    row("a b.ts", {});
    row("http://h/a b.ts", {});
    row("http://a b/c", {});
    row("http://h/100%", {});
    row("http://h/%zz", {});
    row("http://h/a|User-Agent=x", {});
    row("http://h/<a>", {});
    row("http://h/a\x01", {});
    row("http://h:99999/", {});
    row("http://h:port/", {});
    row("http://[::1/", {});
    row("1:b", {});
    row("<!DOCTYPE html>", {});
}

void PlaylistParserTest::resolvesAddresses()
{
    QFETCH(const QByteArray, address);
    QString url;
    for (const PlaylistEntry &entry : entriesOf("#EXTINF:-1,A\n" + address))
        url += entry.url.toString(QUrl::FullyEncoded);
    QTEST(url, "url");
}

void PlaylistParserTest::namesUntitledEntries_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *address, const QString &name) {
        QTest::newRow(address) << QByteArray(address) << name;
    };
    row("http://h/live/news%20hd.m3u8", u"news hd.m3u8"_s);
    row("http://h/live/a%2Fb?x=/y", u"a/b"_s);
    row("http://h/a%252Fb", u"a%2Fb"_s);
    row("http://h/live//", u"live"_s);
    row("http://h/%C3%BC", u"ü"_s);
    row("http://h/%FF", u"h"_s);
    row("http://h", u"h"_s);
    row("http://h:80?x", u"h"_s);
    row("b.ts", u"b.ts"_s);
    row("file:///", u"Stream"_s);
}

void PlaylistParserTest::namesUntitledEntries()
{
    QFETCH(const QByteArray, address);
    const QList<PlaylistEntry> entries = entriesOf(address);
    QCOMPARE(entries.size(), 1);
    QTEST(entries.first().name, "name");
}

void PlaylistParserTest::resolvesAgainstOtherBases_data()
{
    QTest::addColumn<QUrl>("baseURL");
    QTest::addColumn<QString>("url"); // of "a b.ts" escaped; empty: no address
    QTest::newRow("file") << QUrl::fromLocalFile(u"/home/u/my lists/x.m3u"_s)
                          << u"file:///home/u/my%20lists/a%20b.ts"_s;
    QTest::newRow("folder") << QUrl(u"https://h/p/"_s) << u"https://h/p/a%20b.ts"_s;
    QTest::newRow("no path") << QUrl(u"https://h"_s) << u"https://h/a%20b.ts"_s;
    QTest::newRow("query") << QUrl(u"https://h/get.php?type=m3u"_s) << u"https://h/a%20b.ts"_s;
    QTest::newRow("none") << QUrl() << QString();
    QTest::newRow("relative") << QUrl(u"x/list.m3u"_s) << QString();
}

void PlaylistParserTest::resolvesAgainstOtherBases()
{
    QFETCH(const QUrl, baseURL);
    const PlaylistEntries entries = PlaylistParser::parse("a%20b.ts", baseURL);
    const QString url =
        entries.isEmpty() ? QString() : entries.at(0).url.toString(QUrl::FullyEncoded);
    QTEST(url, "url");
}

void PlaylistParserTest::keepsManyHostsApart()
{
    QByteArray text;
    QStringList addresses;
    for (int i = 0; i < 1000; ++i) {
        const QString address = u"http://h%1/x"_s.arg(i % 300);
        text += address.toUtf8() + '\n' + "http://BAD HOST/\n";
        addresses.append(address);
    }
    QStringList urls;
    for (const PlaylistEntry &entry : entriesOf(text))
        urls.append(entry.url.toString());
    QCOMPARE(urls, addresses);
}

void PlaylistParserTest::skipsTooLongAddress()
{
    const auto address = [](qsizetype size) {
        return QByteArray("http://h/").leftJustified(size, 'x');
    };
    const QByteArray longest = address(AddressReader::maximumLength);
    const QByteArray tooLong = address(AddressReader::maximumLength + 1);
    const QByteArray extInf =
        "#EXTINF:-1 tvg-logo=\"" + tooLong + "\" group-title=\"G\",A\n" + tooLong + '\n';
    const QList<PlaylistEntry> entries = entriesOf(extInf + longest);
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.first().url.toEncoded(), longest);
    QCOMPARE(entries.first().groupTitle, u"G"_s);
    QVERIFY(!entries.first().logoURL);
}

void PlaylistParserTest::decodes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("UTF-8") << "Télé"_ba << "Télé"_ba;
    QTest::newRow("byte-order mark") << "\xEF\xBB\xBF#EXTM3U"_ba << "#EXTM3U"_ba;
    QTest::newRow("second mark stays") << "\xEF\xBB\xBF\xEF\xBB\xBF"_ba << "\xEF\xBB\xBF"_ba;
    QTest::newRow("Latin-1") << "T\xE9l\xE9 \x80\xFF"_ba << "Télé \u0080ÿ"_ba;
    QTest::newRow("Latin-1 behind a mark") << "\xEF\xBB\xBF#EXTM3U T\xE9"_ba << "#EXTM3U Té"_ba;
    QTest::newRow("cut-off character") << "a\xE2\x80"_ba << "a\u00e2\u0080"_ba;
    QTest::newRow("overlong slash") << "\xC0\xAF"_ba << "\u00c0\u00af"_ba;
    QTest::newRow("surrogate") << "\xED\xA0\x80"_ba << "\u00ed\u00a0\u0080"_ba;
    QTest::newRow("empty") << ""_ba << ""_ba;
}

void PlaylistParserTest::decodes()
{
    QFETCH(const QByteArray, bytes);
    QTEST(PlaylistParser::decode(bytes).value_or("error"), "text");
}

void PlaylistParserTest::saysWhyPlaylistIsUseless()
{
    const auto result = PlaylistParser::read("#EXTM3U\n#EXTINF:-1,A\n", base);
    QVERIFY(!result);
    QCOMPARE(description(result.error()), u"No playable address was found in the playlist."_s);
    QCOMPARE(description(PlaylistError::invalidEncoding),
             u"The playlist text could not be read."_s);
}

void PlaylistParserTest::givesFreshIdentities()
{
    constexpr qsizetype count = 5000;
    const QByteArray text = repeated("http://h/a\n", count * 11);
    QSet<QUuid> ids;
    for (const QList<PlaylistEntry> &entries : {entriesOf(text), entriesOf(text)}) {
        QCOMPARE(entries.size(), count);
        for (const PlaylistEntry &entry : entries) {
            QCOMPARE(entry.id.version(), QUuid::Random);
            QCOMPARE(entry.id.variant(), QUuid::DCE);
            ids.insert(entry.id);
        }
    }
    QCOMPARE(ids.size(), 2 * count);
}

void PlaylistParserTest::readsMillionEntries()
{
    constexpr int count = 1'000'000;
    QByteArray text;
    text.reserve(qsizetype(count) * 64);
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        text +=
            "#EXTINF:-1 group-title=\"G" + number + "\",N" + number + "\nhttp://h/" + number + '\n';
    }
    const auto entries = PlaylistParser::read(text, base);
    QVERIFY(entries);
    QCOMPARE(entries->size(), count);
    QCOMPARE(entries->groupCount(), count);
    QCOMPARE(line(entries->at(count - 1)), u"N999999 <http://h/999999> group=G999999"_s);
}

void PlaylistParserTest::survivesHugeText_data()
{
    // Large enough that anything quadratic would run out of the test's time.
    constexpr qsizetype size = 8 << 20;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qsizetype>("count");
    const auto row = [](const char *name, const QByteArray &text, qsizetype count) {
        QTest::newRow(name) << text << count;
    };
    row("one line", QByteArray(size, 'x'), 0);
    row("one web address", "http://" + QByteArray(size, 'x'), 0);
    row("one title", "#EXTINF:-1," + QByteArray(size, 'x') + "\nhttp://h/a", 1);
    row("quotes", "#EXTINF:" + repeated("=\"", size) + "\nhttp://h/a", 1);
    row("attributes", "#EXTINF:" + repeated("country=\"", size) + "\nhttp://h/a", 1);
    row("commas", "#EXTINF:" + QByteArray(size, ',') + "\nhttp://h/a", 1);
    row("dots", "#EXTINF:-1 tvg-id=\"" + QByteArray(size, '.') + "\",A\nhttp://h/a", 1);
    row("separators", "#EXTINF:-1 tvg-country=\"" + QByteArray(size, ';') + "\",A\nhttp://h/a", 1);
    row("combined character",
        "#EXTINF:-1 tvg-id=\"ab" + repeated("\u0301", size) + "\",A\nhttp://h/a", 1);
    row("carriage returns", QByteArray(size, '\r'), 0);
    row("line separators", repeated("\u2028", size), 0);
    row("no-break spaces", repeated("\u00a0", size), 0);
    row("NUL", QByteArray(size, '\0'), 0);
    row("binary", repeated("\x00\xff\x1a\x7f\xc3\x28"_ba, size), 0);
    row("climbing paths", repeated("../", AddressReader::maximumLength) + "a", 1);
    row("deep path", repeated("a/", AddressReader::maximumLength), 1);
    row("escapes", repeated("%20", AddressReader::maximumLength), 1);
    row("long host", "http://" + repeated("a.", AddressReader::maximumLength - 8), 1);
    row("long host in Unicode", "http://" + repeated("ü.", AddressReader::maximumLength - 8), 1);
    row("long label in Unicode", "http://" + repeated("ü", AddressReader::maximumLength - 8), 0);
    row("colons", "http://" + repeated(":", AddressReader::maximumLength - 8), 0);
    row("brackets", "http://" + repeated("[", AddressReader::maximumLength - 8), 0);
}

void PlaylistParserTest::survivesHugeText()
{
    QFETCH(const QByteArray, text);
    const auto entries = PlaylistParser::read(text, base);
    QTEST(entries ? entries->size() : 0, "count");
}

QTEST_GUILESS_MAIN(PlaylistParserTest)
#include "tst_playlistparser.moc"
