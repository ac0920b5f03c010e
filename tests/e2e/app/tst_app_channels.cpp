#include "tests/e2e/app/AppWorld.h"

#include <unistd.h>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::FaultResponse)

namespace {

const QByteArray m3uType = "audio/x-mpegurl";

QByteArray listText(const char *name)
{
    return QByteArray("#EXTM3U\n#EXTINF:-1 group-title=\"G\",") + name + "\nmovie.mp4\n";
}

} // namespace

/// Channel lists from real servers and files, good and bad.
class AppChannelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void readsLists_data();
    void readsLists();
    void searchFindsAndPlays();
    void keyboardWalksTheList();
    void badListsLoseNothing_data();
    void badListsLoseNothing();
    void brokenAddressesLoseNothing_data();
    void brokenAddressesLoseNothing();
    void millionEntriesLoad();
    void importsFiles_data();
    void importsFiles();

private:
    void open(const QUrl &url) { m_world->open(url.toString(QUrl::FullyEncoded)); }
    /// From the address field, Tab leads over its buttons to the search field.
    void searchFor(const QString &letter)
    {
        m_world->press(Qt::Key_L, Qt::ControlModifier);
        for (int i = 0; i < 10 && m_world->channels().filterText().isEmpty(); ++i) {
            m_world->press(Qt::Key_Tab);
            m_world->type(letter);
        }
    }
    bool isSettled()
    {
        return becomesTrue([&] { return !m_world->player().isLoading(); });
    }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<FaultServer> m_faults;
    QTemporaryDir m_folder;
    std::unique_ptr<AppWorld> m_world;
};

void AppChannelsTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    m_faults = valueOrFail(FaultServer::start());
    QVERIFY(m_nginx && m_faults);
    QVERIFY(m_nginx->publish(valueOrFail(m_media.path(Fixture::Movie)), u"movie.mp4"_s));
    QVERIFY(m_nginx->writeFile(u"good.m3u"_s, listText("Good")));
}

void AppChannelsTest::readsLists_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("names");
    const auto latin1 = [](const char *text) { return QByteArray(text); };
    QTest::newRow("plain") << listText("One") << u"/list.m3u"_s << QStringList{u"One"_s};
    QTest::newRow("CR LF") << listText("One").replace("\n", "\r\n") << u"/list.m3u"_s
                           << QStringList{u"One"_s};
    QTest::newRow("byte-order mark")
        << "\xEF\xBB\xBF" + listText("One") << u"/list.m3u"_s << QStringList{u"One"_s};
    QTest::newRow("Latin-1") << listText(latin1("Caf\xE9").constData()) << u"/list.m3u"_s
                             << QStringList{u"Café"_s};
    QTest::newRow("panel address")
        << listText("One") << u"/list.m3u?type=m3u_plus&output=ts"_s << QStringList{u"One"_s};
    QTest::newRow("redirected") << listText("One") << u"/redirect/301/list.m3u"_s
                                << QStringList{u"One"_s};
    QTest::newRow("slow") << listText("One") << u"/slow/40/list.m3u"_s << QStringList{u"One"_s};
}

void AppChannelsTest::readsLists()
{
    QFETCH(const QByteArray, body);
    QFETCH(const QString, path);
    QVERIFY(m_nginx->writeFile(u"list.m3u"_s, body));
    open(m_nginx->url(path));
    QVERIFY(m_world->player().isLoading());
    QVERIFY(isSettled());
    QTEST(channelNames(m_world->player()), "names");
    QCOMPARE(m_world->player().title(), u"IPTV Playlist"_s);
    QCOMPARE(m_world->player().errorMessage(), QString());
    QVERIFY(m_world->player().currentURL().isEmpty());
}

void AppChannelsTest::searchFindsAndPlays()
{
    QVERIFY(m_nginx->writeFile(u"many.m3u"_s,
                               "#EXTINF:-1,Alpha\nmovie.mp4?a\n#EXTINF:-1,Beta\nmovie.mp4?b\n"
                               "#EXTINF:-1,Gamma\nmovie.mp4?c\n"));
    open(m_nginx->url(u"/many.m3u"_s));
    QVERIFY(becomesTrue([&] { return m_world->channels().rowCount() == 3; }));

    searchFor(u"m"_s);
    QCOMPARE(m_world->channels().filterText(), u"m"_s);
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    QVERIFY(m_world->playsTo(0.1));
    QCOMPARE(m_world->player().title(), u"Gamma"_s);
}

void AppChannelsTest::keyboardWalksTheList()
{
    QByteArray list;
    for (const char *group : {"A", "B"}) {
        for (int i = 0; i < 40; ++i)
            list += QByteArray("#EXTINF:-1 group-title=\"") + group + "\"," + group
                + QByteArray::number(i) + "\nmovie.mp4\n";
    }
    QVERIFY(m_nginx->writeFile(u"groups.m3u"_s, list));
    open(m_nginx->url(u"/groups.m3u"_s));
    const ChannelListModel &channels = m_world->channels();
    QVERIFY(becomesTrue([&] { return channels.rowCount() == 82; }));
    searchFor(u"x"_s);
    m_world->press(Qt::Key_Backspace);
    QCOMPARE(channels.rowCount(), 82);

    // The first category folds and unfolds, and a page is never too far.
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    QCOMPARE(channels.rowCount(), 42);
    m_world->press(Qt::Key_PageUp);
    m_world->press(Qt::Key_Return);
    QCOMPARE(channels.rowCount(), 82);
    for (int i = 0; i < 30; ++i)
        m_world->press(Qt::Key_PageDown);
    m_world->press(Qt::Key_Return);
    QCOMPARE(m_world->player().title(), u"B39"_s);
    m_world->press(Qt::Key_Home, Qt::ControlModifier);
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    QCOMPARE(m_world->player().title(), u"A0"_s);
    m_world->press(Qt::Key_End, Qt::ControlModifier);
    m_world->press(Qt::Key_F10, Qt::ShiftModifier);
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    QCOMPARE(m_world->player().title(), u"B39"_s);
    QCOMPARE(channels.filterText(), QString());
}

void AppChannelsTest::badListsLoseNothing_data()
{
    QTest::addColumn<FaultResponse>("response");
    QTest::addColumn<QString>("error");
    const auto status = [](int code) {
        FaultResponse response = FaultResponse::of("text/html", "<html>no</html>");
        response.status = code;
        return response;
    };
    const QString empty = u"No playable address was found in the playlist."_s;
    QTest::newRow("403") << status(403) << u"The server answered with status 403."_s;
    QTest::newRow("500") << status(500) << u"The server answered with status 500."_s;
    QTest::newRow("empty") << FaultResponse::of(m3uType, "") << empty;
    QTest::newRow("HTML") << FaultResponse::of("text/html",
                                               "<!DOCTYPE html>\n<html><body>\n<h1>Log in</h1>\n"
                                               "</body></html>\n")
                          << empty;
    QByteArray binary(200'000, '\0');
    for (qsizetype i = 0; i < binary.size(); ++i)
        binary[i] = char(i * 7919 >> 3 & 0xff);
    QTest::newRow("binary") << FaultResponse::of(m3uType, binary)
                            << u"The playlist text could not be read."_s;
    QTest::newRow("100 MB in one line") << FaultResponse::longLine(100 << 20) << empty;
    QTest::newRow("without end") << FaultResponse::longLine(RepeatedBody::endless)
                                 << u"The server's answer is too large."_s;
    FaultResponse broken = FaultResponse::of(m3uType, listText("Half"));
    broken.resetAfter = 20;
    QTest::newRow("reset") << broken << u"The connection to the server was lost."_s;
}

void AppChannelsTest::badListsLoseNothing()
{
    QFETCH(const FaultResponse, response);
    QFETCH(const QString, error);
    open(m_nginx->url(u"/good.m3u"_s));
    QVERIFY(isSettled());
    m_world->shell().playChannel(0);
    QVERIFY(m_world->playsTo(0.1));

    m_faults->route("/bad.m3u", response);
    open(m_faults->url("/bad.m3u"));
    QVERIFY(isSettled());
    QCOMPARE(m_world->player().errorMessage(), u"Could not open playlist: " + error);
    QCOMPARE(channelNames(m_world->player()), QStringList{u"Good"_s});
    QCOMPARE(m_world->player().title(), u"Good"_s);
    QVERIFY(m_world->playsTo(m_world->player().currentTime() + 0.1));
}

void AppChannelsTest::brokenAddressesLoseNothing_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("error");
    const QString invalid = u"Enter a valid HTTP or HTTPS address."_s;
    QTest::newRow("unknown host") << u"http://nowhere.invalid/a.m3u"_s
                                  << u"Could not open playlist: The server could not be reached."_s;
    QTest::newRow("refused") << u"http://127.0.0.1:9/a.m3u"_s
                             << u"Could not open playlist: The server could not be reached."_s;
    QTest::newRow("redirect loop")
        << m_nginx->url(u"/redirect-loop/a?type=m3u"_s).toString()
        << u"Could not open playlist: The server redirected the request too many times."_s;
    QTest::newRow("redirect to a file")
        << m_nginx->url(u"/redirect?to=file:///etc/passwd&type=m3u"_s).toString()
        << u"Could not open playlist: The address is not an HTTP or HTTPS address."_s;
    QTest::newRow("other scheme") << u"ftp://h/a.m3u"_s << invalid;
    QTest::newRow("no host") << u"http:///a.m3u"_s << invalid;
    QTest::newRow("broken port") << u"http://h:99999/a.m3u"_s << invalid;
}

void AppChannelsTest::brokenAddressesLoseNothing()
{
    QFETCH(const QString, address);
    open(m_nginx->url(u"/good.m3u"_s));
    QVERIFY(isSettled());
    m_world->player().openRemote(address, {});
    QVERIFY(isSettled());
    QTEST(m_world->player().errorMessage(), "error");
    QCOMPARE(channelNames(m_world->player()), QStringList{u"Good"_s});
}

void AppChannelsTest::millionEntriesLoad()
{
    FaultResponse response = FaultResponse::of(m3uType, {});
    response.body = {.head = {},
                     .part = "#EXTINF:-1 group-title=\"G\",N\nhttp://h/1.ts\n",
                     .times = 1'000'000,
                     .tail = {}};
    m_faults->route("/million.m3u", response);
    open(m_faults->url("/million.m3u"));
    QVERIFY(becomesTrue([&] { return m_world->channels().count() == 1'000'000; }));
    m_world->channels().setFilterText(u"nothing"_s);
    QVERIFY(becomesTrue([&] { return m_world->channels().matchCount() == 0; }));
}

void AppChannelsTest::importsFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("error");
    const auto write = [this](const QString &name, const QByteArray &content) {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
            ? file.fileName()
            : QString();
    };
    const QString pipe = m_folder.filePath(u"pipe.m3u"_s);
    mkfifo(qPrintable(pipe), 0600);
    QTest::newRow("list") << write(u"My channels.m3u"_s, listText("One")) << QStringList{u"One"_s}
                          << QString();
    QTest::newRow("empty") << write(u"empty.m3u"_s, "#EXTM3U\n") << QStringList()
                           << u"No playable address was found in the playlist."_s;
    QTest::newRow("gone") << m_folder.filePath(u"gone.m3u"_s) << QStringList()
                          << u"The file does not exist."_s;
    const QString vast = write(u"vast.m3u"_s, listText("Vast"));
    QVERIFY(QFile::resize(vast, PlayerModel::maximumPlaylistSize + 1));
    QTest::newRow("too large") << vast << QStringList()
                               << u"The file is too large for a playlist."_s;
    QTest::newRow("binary") << write(u"binary.m3u"_s, QByteArray("\0\1\x89PNG\0\xff", 8))
                            << QStringList() << u"The playlist text could not be read."_s;
    QTest::newRow("pipe that nobody writes to") << pipe << QStringList() << u"It is not a file."_s;
    QTest::newRow("folder") << write(u"."_s, {}) + m_folder.path() << QStringList()
                            << u"It is not a file."_s;
}

void AppChannelsTest::importsFiles()
{
    QFETCH(const QString, path);
    QFETCH(const QString, error);
    m_world->player().importM3UFile(QUrl::fromLocalFile(path), {});
    QVERIFY(isSettled());
    QTEST(channelNames(m_world->player()), "names");
    QCOMPARE(m_world->player().errorMessage(),
             error.isEmpty() ? QString() : u"Could not import playlist: " + error);
    if (error.isEmpty())
        QCOMPARE(m_world->player().title(), u"My channels"_s);
}

LUMARO_APP_TEST_MAIN(AppChannelsTest)
#include "tst_app_channels.moc"
