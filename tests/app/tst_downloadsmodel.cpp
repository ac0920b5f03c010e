#include "app/DownloadsModel.h"
#include "tests/app/ShellWorld.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl stream(u"https://h/live.m3u8"_s);
const QString notAStream = u"Only an HLS stream that plays can be downloaded."_s;

using World = ShellWorld;

} // namespace

class DownloadsModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offersWhatCanBeSaved_data();
    void offersWhatCanBeSaved();
    void savesWhatPlays();
    void namesTheFile_data();
    void namesTheFile();
    void tellsOfErrors();
    void showsTheFolder();
};

void DownloadsModelTest::offersWhatCanBeSaved_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<bool>("offered");
    QTest::newRow("nothing") << QUrl() << false;
    QTest::newRow("stream") << stream << true;
    QTest::newRow("with a query") << QUrl(u"http://h/a.M3U8?x=1"_s) << true;
    QTest::newRow("film") << QUrl(u"https://h/film.mp4"_s) << false;
    QTest::newRow("playlist on disk") << QUrl::fromLocalFile(u"/a.m3u8"_s) << false;
}

void DownloadsModelTest::offersWhatCanBeSaved()
{
    QFETCH(const QUrl, url);
    QFETCH(const bool, offered);
    World world;
    if (!url.isEmpty())
        world.player.play(url, {}, false);
    QCOMPARE(world.downloads.canDownloadStream(), offered);
    world.downloads.downloadStream();
    QCOMPARE(world.downloadManager.jobs().size(), offered ? 1 : 0);
    QCOMPARE(world.downloads.panelShown(), offered);
    QCOMPARE(world.player.toastMessage(), offered ? QString() : notAStream);
}

void DownloadsModelTest::savesWhatPlays()
{
    World world;
    const QSignalSpy changes(&world.downloads, &DownloadsModel::canDownloadStreamChanged);
    world.player.play(stream, u"Evening News"_s, true);
    world.downloads.downloadStream();
    QVERIFY(!world.downloads.canDownloadStream());
    world.downloads.setPanelShown(false);
    world.downloads.downloadStream();
    QVERIFY(world.downloads.panelShown());
    QCOMPARE(world.downloadManager.jobs().size(), 1);

    world.http.respond(stream, 200, "#EXTM3U\na\n");
    world.scheduler.runBackground();
    world.downloadManager.stop(stream);
    world.scheduler.runBackground();
    QVERIFY(world.downloads.canDownloadStream());
    QCOMPARE(changes.count(), 3);
}

void DownloadsModelTest::namesTheFile_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("file");
    QTest::newRow("title") << u"Evening News"_s << u"Evening News.ts"_s;
    QTest::newRow("no title known") << u"Lumaro"_s << u"HLS Video.ts"_s;
}

void DownloadsModelTest::namesTheFile()
{
    QFETCH(const QString, title);
    World world;
    world.player.play(stream, title, true);
    // A list that is opened beside it has a name of its own.
    const QUrl list(u"http://h/list.m3u"_s);
    world.player.openRemote(list.toString(), u"My channels"_s);
    world.http.respond(list, 200, "http://h/1.ts\n");
    world.scheduler.runBackground();
    QCOMPARE(world.player.title(), u"My channels"_s);
    world.downloads.downloadStream();
    world.http.respond(stream, 200, "#EXTM3U\na\n");
    world.scheduler.runBackground();
    QTEST(world.downloads.list()->index(0).data(DownloadListModel::TitleRole).toString(), "file");
}

void DownloadsModelTest::tellsOfErrors()
{
    World world;
    const auto failOnce = [&] {
        world.downloadManager.start(stream, {});
        world.http.respond(stream, 404, {});
    };
    world.downloads.setPanelShown(true);
    failOnce();
    QCOMPARE(world.player.toastMessage(), QString());
    world.downloads.setPanelShown(false);
    failOnce();
    const QString rejected = u"The stream server rejected the download request."_s;
    QCOMPARE(world.player.toastMessage(), rejected);
    // The same again is news too.
    world.scheduler.advance(PlayerModel::toastDuration);
    QCOMPARE(world.player.toastMessage(), QString());
    failOnce();
    QCOMPARE(world.player.toastMessage(), rejected);
}

void DownloadsModelTest::showsTheFolder()
{
    World world;
    QCOMPARE(world.downloads.saveFolderPath(), world.saveFolder.path());
    const QSignalSpy changes(&world.downloads, &DownloadsModel::saveFolderPathChanged);
    world.downloadManager.setSaveFolder(QUrl::fromLocalFile(u"/films"_s));
    QCOMPARE(world.downloads.saveFolderPath(), u"/films"_s);
    QCOMPARE(changes.count(), 1);
}

QTEST_GUILESS_MAIN(DownloadsModelTest)
#include "tst_downloadsmodel.moc"
